// What a driver prints: one section of Markdown with a table and a verdict.

const kNanosecondsPerMicrosecond = 1000;

export const microseconds = (nanoseconds) =>
  `${(nanoseconds / kNanosecondsPerMicrosecond).toFixed(1)} µs`;

/** A ratio with its interval, as lib/statistics.mjs gives it. */
export const times = ({ value, low, high }) =>
  `${value.toFixed(2)} (${low.toFixed(2)} – ${high.toFixed(2)})`;

export const plusMicroseconds = ({ value, low, high }) =>
  `${[value, low, high]
    .map((part) => (part / kNanosecondsPerMicrosecond).toFixed(1))
    .join(" ")
    .replace(/^(\S+) (\S+) (\S+)$/, "$1 ($2 – $3)")} µs`;

export function table(head, rows) {
  const line = (cells) => `| ${cells.join(" | ")} |`;
  const rule = head.map((_, column) => (column === 0 ? "---" : "---:"));
  return [line(head), line(rule), ...rows.map(line)].join("\n");
}

export function section(title, text, tables, verdict) {
  process.stdout.write(`${[`## ${title}`, text, ...tables, verdict].join("\n\n")}\n`);
}

/** One line of a verdict: what was wanted, what came out, and whether that is it. */
export function goal(text, measured, met) {
  return `- ${text}: ${measured}, **${met ? "met" : "not met"}**`;
}
