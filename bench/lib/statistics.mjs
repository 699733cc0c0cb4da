// What a heap of durations comes to: medians, percentiles, and how far a ratio of two of them can
// be trusted.

/** The value below which `share` of the values lie (0.5: the median), between two where need be. */
export function quantile(values, share) {
  const sorted = Float64Array.from(values).sort();
  if (sorted.length === 0) throw new Error("a quantile of nothing");
  const place = share * (sorted.length - 1);
  const below = Math.floor(place);
  const above = Math.min(below + 1, sorted.length - 1);
  return sorted[below] + (place - below) * (sorted[above] - sorted[below]);
}

export const median = (values) => quantile(values, 0.5);

/** The median, and between which values the middle half lies. */
export function spread(values, digits = 1) {
  const [low, middle, high] = [0.25, 0.5, 0.75].map((share) =>
    quantile(values, share).toFixed(digits),
  );
  return `${middle} (${low} – ${high})`;
}

/** The same things in an order drawn anew. */
export function shuffled(items) {
  const order = [...items];
  for (let last = order.length - 1; last > 0; last -= 1) {
    const other = Math.floor(Math.random() * (last + 1));
    [order[last], order[other]] = [order[other], order[last]];
  }
  return order;
}

const kResamples = 400;

function resampled(values) {
  return values.map(() => values[Math.floor(Math.random() * values.length)]);
}

/**
 * The ratio of a quantile of `values` to the same of `base`, with its 95 % interval by the
 * bootstrap: how much it moves when both are drawn again from what was measured.
 */
export function ratio(values, base, share = 0.5) {
  return compared(values, base, (left, right) => quantile(left, share) / quantile(right, share));
}

/** The same of the difference of the medians. */
export function difference(values, base) {
  return compared(values, base, (left, right) => median(left) - median(right));
}

function compared(values, base, compare) {
  const again = [];
  for (let round = 0; round < kResamples; round += 1) {
    again.push(compare(resampled(values), resampled(base)));
  }
  return {
    value: compare(values, base),
    low: quantile(again, 0.025),
    high: quantile(again, 0.975),
  };
}
