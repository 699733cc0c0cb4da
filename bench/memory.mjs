// An action of a companion that has hundreds of megabytes of its own: does it pay for them?

import { Program, alternate, built, kChild, quick } from "./lib/program.mjs";
import { goal, microseconds, section, table, times } from "./lib/report.mjs";
import { median, ratio } from "./lib/statistics.mjs";

const kMegabytes = [0, 100, 500, 1000];
const kTurns = quick ? 6 : 40;
const kRounds = 5;
const kFlat = 1.1;

const start = (megabytes, ...ways) =>
  new Program(built("action"), [kChild, `${megabytes}`, ...ways]);
const curve = kMegabytes.map((megabytes) => ({
  megabytes,
  launching: start(megabytes, "companion", "bare"),
  forking: start(megabytes, "forked"),
}));
await alternate(
  curve.flatMap(({ launching, forking }) => [launching, forking]),
  kTurns,
  kRounds,
);

const ways = ["companion", "bare", "forked"];
const durations = ({ launching, forking }, way) => launching.of(way) ?? forking.of(way);
const growth = (point, way) => ratio(durations(point, way), durations(curve[0], way));
const rows = curve.map((point) => [
  `${point.megabytes} MB`,
  ...ways.map((way) => microseconds(median(durations(point, way)))),
  ...ways.map((way) => times(growth(point, way))),
]);
const most = growth(curve.at(-1), "companion");
const mostOfBare = growth(curve.at(-1), "bare");

section(
  "An action of a large process",
  `The same with so many megabytes of dirty memory in the process that launches; the ratios are to
the same way without any. Fork and exec copies page tables and shows what the others are spared.`,
  [
    table(
      ["dirty", ...ways.map((way) => `${way}, median`), ...ways.map((way) => `${way}, ratio`)],
      rows,
    ),
  ],
  goal(
    `flat: at most ${kFlat} with ${kMegabytes.at(-1)} MB`,
    `${times(most)}; bare ${times(mostOfBare)}`,
    most.value <= kFlat,
  ),
);
