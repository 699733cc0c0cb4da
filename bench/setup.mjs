// A request of the setup window: from the call to its completion, against a bare exchange.

import { Several, alternate, built, kChild, quick } from "./lib/program.mjs";
import { goal, microseconds, plusMicroseconds, section, table, times } from "./lib/report.mjs";
import { difference, median, quantile, ratio } from "./lib/statistics.mjs";

const kLengths = [40, 400, 8192];
const kProcesses = quick ? 2 : 8;
const kTurns = quick ? 4 : 25;
const kRounds = 10;
const kGoalMicroseconds = 100;

const channels = kLengths.map((length) => ({
  length,
  program: new Several(kProcesses, built("setup"), [kChild, `${length}`]),
}));
await alternate(
  channels.flatMap(({ program }) => program.programs),
  kTurns,
  kRounds,
);

const measured = channels.map(({ length, program }) => ({
  length,
  channel: program.of("companion"),
  bare: program.of("bare"),
  more: difference(program.of("companion"), program.of("bare")),
}));

section(
  "A request of setup",
  `From the request on the main thread to its completion on the main thread, against the exchange of
the same lines with another process of the same program, on the calling thread. Both took turns in
${kProcesses} processes, ${measured[0].bare.length} exchanges each in all.`,
  [
    table(
      ["reply", "bare", "companion", "p99 of both", "more", "ratio"],
      measured.map(({ length, channel, bare, more }) => [
        `${length} bytes`,
        microseconds(median(bare)),
        microseconds(median(channel)),
        `${microseconds(quantile(bare, 0.99))}, ${microseconds(quantile(channel, 0.99))}`,
        plusMicroseconds(more),
        times(ratio(channel, bare)),
      ]),
    ),
  ],
  measured
    .map(({ length, more }) =>
      goal(
        `${length} bytes within ${kGoalMicroseconds} µs of bare`,
        plusMicroseconds(more),
        more.value <= kGoalMicroseconds * 1000,
      ),
    )
    .join("\n"),
);
