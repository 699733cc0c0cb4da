// From the click to the sentence: an action of the companion and a bare launch of the same child,
// and how others launch it.

import fs from "node:fs";
import { fileURLToPath } from "node:url";

import { Program, Several, alternate, built, isThere, kChild, quick } from "./lib/program.mjs";
import { goal, microseconds, section, table, times } from "./lib/report.mjs";
import { median, quantile, ratio } from "./lib/statistics.mjs";

const kProcesses = quick ? 2 : 5; // of our own, which everything is compared with
const kTurns = quick ? 6 : 50;
const kRounds = quick ? 5 : 10;
const kMedianGoal = 1.1;
const kTailGoal = 1.25;
const kTail = 0.99;

// The names in operator/ActionJob.h, which the peers of other languages cannot include.
const kEnvironmentNames = fs
  .readFileSync(new URL("../operator/ActionJob.h", import.meta.url), "utf8")
  .match(/kOperatorEnvironment\{([^}]*)\}/)[1]
  .match(/[A-Z_]+/g);
process.env.BENCH_ENVIRONMENT = kEnvironmentNames.join(" ");
const kSlowest = "GNUstep, NSTask";
const kArguments = ["/bench/desktop/service.mjs", "status", "--home", "/bench/home"];

const script = (name) => fileURLToPath(new URL(`peers/${name}`, import.meta.url));
const compiled = (name) => [built(name), kChild];
const kPeers = [
  ["libuv, uv_spawn", compiled("uv")],
  ["GLib, GSubprocess", compiled("gsubprocess")],
  ["Boost.Process", compiled("boost")],
  ["Qt, QProcess", compiled("qprocess")],
  [kSlowest, compiled("nstask")],
  ["Python, subprocess", ["python3", script("python.py"), kChild, ...kArguments]],
  ["Node, child_process", [process.execPath, script("node.mjs"), kChild, ...kArguments]],
];

const start = ([command, ...rest]) => new Program(command, rest);
const several = ([command, ...rest]) => new Several(kProcesses, command, rest);
const own = several([...compiled("action"), "0", "companion", "job", "bare", "handed", "minimal"]);
const forking = start([...compiled("action"), "0", "forked"]);
const runLoop = isThere(built("run-loop")) ? several(compiled("run-loop")) : null;
const peers = kPeers.map(([name, command]) => ({
  name,
  program: isThere(command[0]) ? start(command) : null,
}));
// A hundred milliseconds each, for NSTask looks for the end of its child ten times a second.
peers.filter(({ name, program }) => name === kSlowest && program).forEach(({ program }) => {
  program.share = 0.1;
});
const others = peers.map(({ program }) => program);
const programs = [...own.programs, ...(runLoop?.programs ?? []), forking, ...others];
await alternate(programs.filter(Boolean), kTurns, kRounds);

const bare = own.of("bare");
const rows = [
  ["bare: posix_spawn, read, waitpid", bare],
  ["bare, without the promises to the child", own.of("minimal")],
  ["bare, fork and exec", forking.of("forked")],
  ["bare, by another thread and back", own.of("handed")],
  ["the companion's job, without its queues", own.of("job")],
  ["**companion**", own.of("companion")],
  ["**companion**, AppKit's run loop", runLoop?.of("companion")],
  ...peers.map(({ name, program }) => [name, program?.of("peer")]),
].map(([name, values]) =>
  values
    ? [
        name,
        microseconds(median(values)),
        microseconds(quantile(values, kTail)),
        times(ratio(values, bare)),
        times(ratio(values, bare, kTail)),
      ]
    : [name, "not on this machine", "", "", ""],
);

const typical = ratio(own.of("companion"), bare);
const tail = ratio(own.of("companion"), bare, kTail);
const fastest = Math.min(
  ...peers.filter(({ program }) => program).map(({ program }) => median(program.of("peer"))),
);
const lead = fastest / median(own.of("companion"));

section(
  "An action",
  `From the command on the main thread to the outcome on the main thread, with a child that only
prints its reply, against a bare launch of the same child with the same environment and pipes. All
of them took turns in one run, ${bare.length} launches of ours in ${kProcesses} processes and
${kTurns * kRounds} of most others; ratios are to the first row, with their 95 % interval.`,
  [table(["way", "median", "p99", "median, ratio", "p99, ratio"], rows)],
  [
    goal(`median at most ${kMedianGoal} of bare`, times(typical), typical.value <= kMedianGoal),
    goal(`p99 at most ${kTailGoal} of bare`, times(tail), tail.value <= kTailGoal),
    goal(
      "ahead of every peer",
      `the fastest peer takes ${lead.toFixed(2)} of the companion's median`,
      lead > 1,
    ),
  ].join("\n"),
);
