// How often the companion is woken while nobody uses it, and how much memory it has, beside a
// hello-world program.

import { spawn } from "node:child_process";
import fs from "node:fs";
import path from "node:path";
import { setTimeout as delay } from "node:timers/promises";
import { isAlive } from "../tests/tour/processes.mjs";
import { Program } from "../tests/tour/program.mjs";
import { Scratch } from "../tests/tour/scratch.mjs";
import { eventually } from "../tests/tour/waiting.mjs";
import { hello, onDisplay, product } from "./lib/desktop.mjs";
import { build, quick } from "./lib/program.mjs";
import { goal, section, table } from "./lib/report.mjs";

const kMemoryGoal = 1.15;
const kCalm = 3000; // milliseconds without a switch: what a launch or an action began is over
const kSeconds = quick ? 10 : 60;

/** How often each thread gave up the processor, by itself or because it was taken. */
function switchesOf(pid) {
  const threads = new Map();
  for (const thread of fs.readdirSync(`/proc/${pid}/task`)) {
    const status = fs.readFileSync(`/proc/${pid}/task/${thread}/status`, "utf8");
    const count = (kind) =>
      Number(new RegExp(`^${kind}_ctxt_switches:\\s+(\\d+)`, "m").exec(status)[1]);
    threads.set(thread, { voluntary: count("voluntary"), involuntary: count("nonvoluntary") });
  }
  return threads;
}

function switchesBetween(before, after, pid) {
  const sum = { voluntary: 0, involuntary: 0, threads: after.size, ofWorkers: 0 };
  for (const [thread, { voluntary, involuntary }] of after) {
    const more = voluntary - (before.get(thread)?.voluntary ?? 0);
    sum.voluntary += more;
    if (Number(thread) !== pid) sum.ofWorkers += more;
    sum.involuntary += involuntary - (before.get(thread)?.involuntary ?? 0);
  }
  return sum;
}

/** Kilobytes: its share of what it has in memory, and what nobody else has and it wrote. */
function memoryOf(pid) {
  const rollup = fs.readFileSync(`/proc/${pid}/smaps_rollup`, "utf8");
  const value = (name) => Number(new RegExp(`^${name}:\\s+(\\d+) kB`, "m").exec(rollup)[1]);
  return { pss: value("Pss"), dirty: value("Private_Dirty") };
}

async function start({ title, file }, env, display) {
  const child = spawn(file, [], { env, stdio: "ignore" });
  await eventually(() => isAlive(child.pid) && display.hasWindow(title), `the window ${title}`);
  return child.pid;
}

/** Looks from outside, which wakes nobody, until nothing has happened for a while. */
async function calm(pids) {
  const state = () => JSON.stringify(pids.map((pid) => [...switchesOf(pid)]));
  let last = state();
  let since = performance.now();
  const deadline = since + 30000;
  // One that never comes to rest is measured all the same.
  while (performance.now() - since < kCalm && performance.now() < deadline) {
    await delay(100);
    const now = state();
    if (now !== last) [last, since] = [now, performance.now()];
  }
}

async function measure(pids) {
  await calm(pids);
  const before = pids.map(switchesOf);
  const memory = pids.map(memoryOf);
  await delay(kSeconds * 1000);
  return pids.map((pid, i) => ({
    ...switchesBetween(before[i], switchesOf(pid), pid),
    ...memory[i],
  }));
}

/** Where "Refresh Status" is: a first copy tells, which is none of those that are measured. */
function placeOfButton(env, display, scratch) {
  const observer = path.join(build, "tests/tour/libveltrix_tour_observer.so");
  return Program.start({ executable: product.file, observer, scratch, display }).then(
    async (program) => {
      const { frame } = (await program.look()).window(product.title).button("Refresh Status");
      await program.quit();
      return frame;
    },
  );
}

const childrenOf = (pid) =>
  fs
    .readdirSync(`/proc/${pid}/task`)
    .map((thread) => fs.readFileSync(`/proc/${pid}/task/${thread}/children`, "utf8").trim())
    .join("");

async function refreshStatus(pid, frame, display) {
  display.click(frame);
  await eventually(() => childrenOf(pid) !== "", "the script of the action");
  await eventually(() => childrenOf(pid) === "", "its end");
}

async function run(env, display, scratch) {
  const frame = await placeOfButton(env, display, scratch);
  // In one home they would wait for each other: GNUstep locks the defaults twice a minute.
  const home = new Scratch();
  try {
    // The hello world first: the companion's window is to lie on top, where it can be clicked.
    const baseline = await start(hello, home.environment(display), display);
    const companion = await start(product, env, display);
    const atRest = await measure([companion, baseline]);
    await refreshStatus(companion, frame, display);
    return { atRest, afterAction: await measure([companion, baseline]) };
  } finally {
    await home.remove();
  }
}

const { atRest, afterAction } = await onDisplay(run);

const of = (value, baseline) => `${value} (${(value / baseline).toFixed(2)})`;
const rows = (when, [companion, baseline]) => [
  [
    `companion, ${when}`,
    companion.threads,
    companion.voluntary,
    companion.involuntary,
    of(companion.pss, baseline.pss),
    of(companion.dirty, baseline.dirty),
  ],
  [
    `hello world, ${when}`,
    baseline.threads,
    baseline.voluntary,
    baseline.involuntary,
    of(baseline.pss, baseline.pss),
    of(baseline.dirty, baseline.dirty),
  ],
];
const more = [atRest, afterAction].map(([a, b]) => a.voluntary - b.voluntary);
const ofWorkers = atRest[0].ofWorkers + afterAction[0].ofWorkers;
const ratios = [atRest, afterAction].flatMap(([a, b]) => [a.pss / b.pss, a.dirty / b.dirty]);
const worst = Math.max(...ratios);
section(
  "At rest",
  `How often the threads of the companion and of the hello world were woken in ${kSeconds} s, both
at once on one display, and the memory that each has, in kB and beside the hello world's; after the
launch, and after a status refresh.`,
  [
    table(
      ["program", "threads", "voluntary switches", "involuntary", "Pss", "private dirty"],
      [...rows("launched", atRest), ...rows("after an action", afterAction)],
    ),
  ],
  [
    goal("no wakeup of a thread of our own", `${ofWorkers}`, ofWorkers === 0),
    goal(
      "no voluntary switch more than the hello world",
      more.join(" and "),
      more.every((count) => count <= 0),
    ),
    goal(`at most ${kMemoryGoal} of its memory`, worst.toFixed(2), worst <= kMemoryGoal),
  ].join("\n"),
);
