// Single steps of an action, measured by Google Benchmark.

import { execFileSync } from "node:child_process";

import { built, isThere, kChild, quick } from "./lib/program.mjs";
import { goal, section, table } from "./lib/report.mjs";
import { median, quantile } from "./lib/statistics.mjs";

const kProgram = built("micro");
const kTogetherGoal = 0.1;
// The steps that every action takes once.
const kOfAnAction = [
  "parse a reply of 40 bytes",
  "copy and filter 312 variables",
  "look up the last outcome",
];

function measured() {
  const text = execFileSync(
    kProgram,
    [
      "--benchmark_format=json",
      `--benchmark_repetitions=${quick ? 3 : 15}`,
      `--benchmark_min_time=${quick ? 0.02 : 0.1}`,
      "--benchmark_enable_random_interleaving=true",
    ],
    { env: { ...process.env, BENCH_CHILD: kChild }, stdio: ["ignore", "pipe", "ignore"] },
  );
  const times = new Map();
  for (const run of JSON.parse(text).benchmarks) {
    if (run.error_occurred) throw new Error(`${run.name}: ${run.error_message}`);
    if (run.run_type !== "iteration") continue;
    const name = run.name.replace("/real_time", "");
    if (!times.has(name)) times.set(name, []);
    times.get(name).push(run.real_time);
  }
  return times;
}

if (!isThere(kProgram)) {
  section("Single steps", "Google Benchmark is not on this machine.", [], "Left out.");
} else {
  const times = measured();
  const launch = median(times.get("bare launch"));
  const share = (nanoseconds) => `${((100 * nanoseconds) / launch).toFixed(2)} %`;
  const together = kOfAnAction.reduce((sum, name) => sum + median(times.get(name)), 0) / launch;
  section(
    "Single steps",
    `What the companion computes around a child, each by itself, as a share of one bare launch in
the same run; in random order, with the range of the middle half.`,
    [
      table(
        ["step", "median", "middle half", "of a bare launch"],
        [...times]
          .sort(([, left], [, right]) => median(right) - median(left))
          .map(([name, values]) => [
          name,
          `${median(values).toFixed(0)} ns`,
          `${quantile(values, 0.25).toFixed(0)} – ${quantile(values, 0.75).toFixed(0)} ns`,
          share(median(values)),
        ]),
      ),
    ],
    goal(
      `what every action computes is at most ${100 * kTogetherGoal} % of a bare launch`,
      `${(100 * together).toFixed(2)} %`,
      together <= kTogetherGoal,
    ),
  );
}
