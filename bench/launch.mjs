// How long the companion takes to come onto the screen, beside a hello-world program.

import { spawn } from "node:child_process";
import { createInterface } from "node:readline";
import { hello, kWindows, onDisplay, product, productWithSymbols, stock } from "./lib/desktop.mjs";
import { countOwnInstructions } from "./lib/instructions.mjs";
import { quick } from "./lib/program.mjs";
import { goal, section, table, times } from "./lib/report.mjs";
import { median, ratio, shuffled, spread } from "./lib/statistics.mjs";

const kGoal = 1.15;
const kOwnGoal = 5; // milliseconds
const kRounds = quick ? 5 : 40;

/** Starts the program once: { window, titled, drawn } in milliseconds since then. */
async function launch({ title, file }, env) {
  const watch = spawn(kWindows, [title, file], {
    env,
    stdio: ["pipe", "pipe", "ignore"],
  });
  const moments = {};
  for await (const line of createInterface({ input: watch.stdout })) {
    const [what, number] = line.split(" ");
    moments[what] = Number(number) / 1000;
    if (what === "drawn") watch.stdin.end();
  }
  if (!("drawn" in moments)) throw new Error(`${file} never showed its window`);
  return moments;
}

async function launchAll(env) {
  const measured = new Map([product, hello, stock].map((program) => [program, []]));
  for (const program of measured.keys()) await launch(program, env); // fills the caches
  for (let round = 0; round < kRounds; ++round) {
    for (const program of shuffled([...measured.keys()])) {
      measured.get(program).push(await launch(program, env));
    }
  }
  return (program, what) => measured.get(program).map((moments) => moments[what]);
}

const all = await onDisplay(launchAll);
const own = await onDisplay((env) => countOwnInstructions(productWithSymbols, env));

const row = (name, program) => [
  name,
  ...["titled", "drawn"].map((what) => spread(all(program, what))),
  ...["titled", "drawn"].map((what) => times(ratio(all(program, what), all(hello, what)))),
];
const shown = ratio(all(product, "titled"), all(hello, "titled"));
const milliseconds = (share) => share * median(all(product, "titled"));
section(
  "Launch",
  `From exec to the settings window on the screen of a virtual display, in milliseconds: the median
and the middle half of ${kRounds} launches each, in random order. Ratios are to a hello-world
program built the same way, with their 95 % interval.`,
  [
    table(
      ["program", "shown, ms", "painted, ms", "shown, ratio", "painted, ratio"],
      [
        row("**companion**", product),
        row("hello world", hello),
        row("hello world on GNUstep as it is", stock),
      ],
    ),
    `Of ${own.total} million instructions until it is shown ${(100 * own.ours).toFixed(3)} % are the
companion's own; what is supplied to GNUstep takes ${milliseconds(own.supplied).toFixed(2)} ms.`,
  ],
  [
    goal(`shown in at most ${kGoal} of the hello world's time`, times(shown), shown.value <= kGoal),
    goal(
      `less than ${kOwnGoal} ms of our own`,
      `${milliseconds(own.ours).toFixed(3)} ms`,
      milliseconds(own.ours) < kOwnGoal,
    ),
  ].join("\n"),
);
