// A script that prints a gigabyte.

import { Program, alternate, built, kChild, quick } from "./lib/program.mjs";
import { goal, section, table, times } from "./lib/report.mjs";
import { median, ratio } from "./lib/statistics.mjs";

const kBytes = 2 ** 30;
const kTurns = quick ? 5 : 30;
const kMemoryGoalKilobytes = 1024;
const kThroughputGoal = 0.9;

const program = new Program(built("flood"), [kChild, `${kBytes}`]);
await alternate([program], kTurns, 1);

const action = program.of("companion");
const cat = program.of("cat");
const grown = Number(program.lastWords.match(/^grown (\d+)$/)[1]);
const throughput = ratio(cat, action);
const speed = (values) => `${(kBytes / median(values)).toFixed(2)} GB/s`;

section(
  "A script that prints a gigabyte",
  `An action whose script prints 2^30 bytes in pieces of 64 KiB, against \`cat >/dev/null\` behind
the same program and the same kind of pipe, ${cat.length} times each in turn. Memory is the growth
of the process's peak (VmHWM) over all of them.`,
  [
    table(
      ["way", "median throughput", "ratio"],
      [
        ["cat", speed(cat), "1"],
        ["companion", speed(action), times(throughput)],
      ],
    ),
  ],
  [
    goal(
      `memory grows by less than ${kMemoryGoalKilobytes} KB`,
      `${grown} KB`,
      grown < kMemoryGoalKilobytes,
    ),
    goal(
      `throughput at least ${kThroughputGoal} of cat`,
      times(throughput),
      throughput.value >= kThroughputGoal,
    ),
  ].join("\n"),
);
