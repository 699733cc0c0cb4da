// How long it takes to build everything from nothing and to run the tests.

import { spawnSync } from "node:child_process";
import fs from "node:fs";
import os from "node:os";

import { quick } from "./lib/program.mjs";
import { goal, section, table } from "./lib/report.mjs";

const kProcessors = os.availableParallelism();
const kFolder = "build-times";
const kBuildGoal = 60;
const kTestGoal = 60;
const kSanitizedGoal = 180;

/** In seconds. */
function timed(command, ...rest) {
  const begin = process.hrtime.bigint();
  const done = spawnSync("sh", ["-c", 'exec "$@" >&2', "sh", command, ...rest], {
    env: { ...process.env, CCACHE_DISABLE: "1" },
    stdio: ["ignore", "ignore", "pipe"],
    maxBuffer: 2 ** 28,
  });
  const duration = Number(process.hrtime.bigint() - begin) / 1e9;
  if (done.status !== 0) {
    process.stderr.write(done.stderr);
    throw new Error(`${command} ${rest.join(" ")} ended with status ${done.status}`);
  }
  return duration;
}

function build(...options) {
  fs.rmSync(kFolder, { recursive: true, force: true });
  return timed("scripts/build", ...options, kFolder);
}

function test() {
  const options = ["--no-tests=error", "--parallel", `${kProcessors + 1}`]; // as scripts/test
  return timed("ctest", "--test-dir", kFolder, ...options);
}

const measured = [];
const measure = (name, limit, seconds) => measured.push({ name, limit, seconds });

measure("clean build", kBuildGoal, build(...(quick ? ["--core"] : [])));
measure("tests of that build", kTestGoal, test());
if (!quick) {
  const sanitized = build("--core", "--sanitize", "address,undefined");
  measure("core and its tests with sanitizers", kSanitizedGoal, sanitized + test());
}
fs.rmSync(kFolder, { recursive: true, force: true });

const seconds = (value) => `${value.toFixed(0)} s`;
section(
  "Building and testing",
  `On ${kProcessors} processors, without a compiler cache; the load of the machine counts in.`,
  [
    table(
      ["what", "time", "goal"],
      measured.map(({ name, limit, seconds: value }) => [name, seconds(value), seconds(limit)]),
    ),
  ],
  measured
    .map(({ name, limit, seconds: value }) =>
      goal(`${name} under ${limit} s`, seconds(value), value < limit),
    )
    .join("\n"),
);
