// How long the main thread lets others wait while an action is under way.

import { execFileSync } from "node:child_process";
import fs from "node:fs";
import os from "node:os";
import path from "node:path";
import { build, quick } from "./lib/program.mjs";
import { goal, section, table } from "./lib/report.mjs";
import { quantile } from "./lib/statistics.mjs";

const kGoal = 16; // milliseconds
const kRounds = quick ? 3 : 20;
const kOnADisplay = "tests/support/gnustep/on-a-display";

/** Runs the shell's own tests of it; what they wrote down, in milliseconds by test and kind. */
function longestWaits() {
  const folder = fs.mkdtempSync(path.join(os.tmpdir(), "veltrix-bench-"));
  try {
    const waits = new Map();
    const tests = path.join(build, "tests/shell/veltrix_shell_tests");
    const report = path.join(folder, "report.json");
    for (let round = 0; round < kRounds; ++round) {
      const filter = ["--gtest_filter=ResponsivenessTest.*", `--gtest_output=json:${report}`];
      execFileSync(kOnADisplay, [tests, ...filter], { stdio: "ignore" });
      for (const test of JSON.parse(fs.readFileSync(report, "utf8")).testsuites[0].testsuite) {
        const entry = waits.get(test.name) ?? { idle: [], action: [] };
        for (const kind of ["idle", "action"]) {
          if (kind in test) entry[kind].push(Number(test[kind]) / 1000);
        }
        waits.set(test.name, entry);
      }
    }
    return waits;
  } finally {
    fs.rmSync(folder, { recursive: true, force: true });
  }
}

const waits = longestWaits();
if (waits.size === 0) throw new Error("the tests have measured nothing");
const words = (name) => name.replaceAll(/(?<!^)[A-Z]/g, (letter) => ` ${letter.toLowerCase()}`);
const shown = (values) =>
  [0.5, 1].map((share) => (values.length === 0 ? "" : quantile(values, share).toFixed(1)));
const typical = Math.max(...[...waits.values()].map(({ action }) => quantile(action, 0.5)));
const worst = Math.max(...[...waits.values()].flatMap(({ action }) => action));
section(
  "Stalls",
  `The longest that the main thread let a watchdog wait for an answer, in milliseconds: in one of
${kRounds} runs, typically and at worst, idle and from before an action's start to its end.`,
  [
    table(
      ["during the action", "idle, median", "idle, worst", "action, median", "action, worst"],
      [...waits].map(([name, { idle, action }]) => [words(name), ...shown(idle), ...shown(action)]),
    ),
  ],
  [
    goal(`at most ${kGoal} ms`, `${worst.toFixed(1)} ms in the worst run of all`, worst <= kGoal),
    goal(`typically, too`, `${typical.toFixed(1)} ms in the median run`, typical <= kGoal),
  ].join("\n"),
);
