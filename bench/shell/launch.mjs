// launch.mjs: see bench/launch.

import { spawn } from "node:child_process";
import { createInterface } from "node:readline";
import path from "node:path";
import { countOwnInstructions } from "./instructions.mjs";
import { onDisplay, programs } from "./programs.mjs";
import {
  median, metOrNot, prepare, ratioOfMedians, section, shuffled, spread,
} from "./report.mjs";

const kGoal = 1.15;
const kOwnGoal = 5; // milliseconds

const { quick, build } = prepare("veltrix_bench_shell");
const { product, withSymbols, hello, stock } = programs(build);
const kRounds = quick ? 5 : 40;

/** Starts the program once: { window, titled, drawn } in milliseconds since then. */
async function launch({ title, file }, env) {
  const watch = spawn(path.join(build, "bench/veltrix_bench_windows"), [title, file], {
    env,
    stdio: ["pipe", "pipe", "ignore"],
  });
  const times = {};
  for await (const line of createInterface({ input: watch.stdout })) {
    const [what, number] = line.split(" ");
    times[what] = Number(number) / 1000;
    if (what === "drawn") watch.stdin.end();
  }
  if (!("drawn" in times)) throw new Error(`${file} never showed its window`);
  return times;
}

async function launchAll(env) {
  const measured = new Map([product, hello, stock].map((program) => [program, []]));
  for (const program of measured.keys()) await launch(program, env); // fills the caches
  for (let round = 0; round < kRounds; ++round) {
    for (const program of shuffled([...measured.keys()])) {
      measured.get(program).push(await launch(program, env));
    }
  }
  return (program, what) => measured.get(program).map((times) => times[what]);
}

const times = await onDisplay(launchAll);
const own = await onDisplay((env) => countOwnInstructions(withSymbols, build, env));

const row = (name, program, baseline) => [
  name,
  ...["titled", "drawn"].map((what) => spread(times(program, what))),
  ...["titled", "drawn"].map(
    (what) => ratioOfMedians(times(program, what), times(baseline, what)).text,
  ),
];
const { ratio } = ratioOfMedians(times(product, "titled"), times(hello, "titled"));
const ownTime = own.ours * median(times(product, "titled"));
const suppliedTime = own.supplied * median(times(product, "titled"));
section(
  "Launch",
  `From exec to the settings window on the screen of a virtual display, in milliseconds: the ` +
    `median and the middle half of ${kRounds} launches each, in random order. The goal is at ` +
    `most ${kGoal} times a hello-world program built the same way, and under ${kOwnGoal} ms of ` +
    `our own.`,
  ["Program", "shown, ms", "painted, ms", "shown, ratio", "painted, ratio"],
  [
    row("companion", product, hello),
    row("hello world", hello, hello),
    row("hello world on GNUstep as it is", stock, hello),
  ],
  `Shown: ${ratio.toFixed(2)} times the hello world, goal ${kGoal}: ${metOrNot(ratio <= kGoal)}. ` +
    `Of ${own.total} million instructions up to then ${(100 * own.ours).toFixed(3)}% are the ` +
    `companion's own, ${ownTime.toFixed(3)} ms of the time, goal ${kOwnGoal}: ` +
    `${metOrNot(ownTime < kOwnGoal)}; what is supplied to GNUstep takes another ` +
    `${suppliedTime.toFixed(2)} ms.`,
);
