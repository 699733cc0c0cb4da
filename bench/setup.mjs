// A request of the setup window: from the call to its completion, against a bare exchange.

import { Program, alternate, built, kChild, quick } from "./lib/program.mjs";
import { goal, microseconds, plusMicroseconds, section, table, times } from "./lib/report.mjs";
import { difference, median, quantile, ratio } from "./lib/statistics.mjs";

const kLengths = [40, 400, 8192];
const kTurns = quick ? 8 : 100;
const kRounds = 20;
const kGoalMicroseconds = 100;

const channels = kLengths.map((length) => ({
  length,
  program: new Program(built("setup"), [kChild, `${length}`]),
}));
await alternate(
  channels.map(({ program }) => program),
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
the same lines with another process of the same program, on the calling thread. Both took turns,
${measured[0].bare.length} exchanges each.`,
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
