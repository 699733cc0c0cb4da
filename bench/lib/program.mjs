// The measuring programs as a driver sees them: started once, asked for rounds in turn. See
// measure/Measure.h for how they speak.

import { spawn } from "node:child_process";
import fs from "node:fs";
import path from "node:path";
import { createInterface } from "node:readline";
import { shuffled } from "./statistics.mjs";

/** The build that is measured. */
export const build = process.env.VELTRIX_BENCH_BUILD;
if (!build) throw new Error("start this with scripts/bench");

/** A program of it that measures. */
export const built = (name) => path.join(build, "bench", `bench-${name}`);
export const kChild = built("child");

export const quick = process.argv.includes("--quick");

export function isThere(command) {
  if (command.includes("/")) return fs.existsSync(command);
  return process.env.PATH.split(":").some((folder) => fs.existsSync(path.join(folder, command)));
}

export class Program {
  /** Durations by way, in nanoseconds. */
  durations = new Map();
  /** How many of the rounds of a turn it takes part in; for what is very slow. */
  share = 1;
  /** What it said once it was told to end. */
  lastWords = "";

  constructor(command, commandArguments) {
    this.command = command;
    this.process = spawn(command, commandArguments, { stdio: ["pipe", "pipe", "inherit"] });
    this.failure = null;
    this.ended = new Promise((resolve) => {
      this.process.on("error", (error) => {
        this.failure = error;
        resolve();
      });
      this.process.on("close", (status) => {
        if (status !== 0) this.failure ??= new Error(`${command} ended with status ${status}`);
        resolve();
      });
    });
    this.process.stdin.on("error", () => {}); // its end tells more
    this.lines = createInterface({ input: this.process.stdout })[Symbol.asyncIterator]();
  }

  async measure(rounds) {
    this.process.stdin.write(`${rounds}\n`);
    for (;;) {
      const { value: line, done } = await this.lines.next();
      if (done) {
        await this.ended;
        throw this.failure ?? new Error(`${this.command} ended too early`);
      }
      if (line === "done") return;
      const [way, duration] = line.split(" ");
      if (!this.durations.has(way)) this.durations.set(way, []);
      this.durations.get(way).push(Number(duration));
    }
  }

  async end() {
    this.process.stdin.end();
    for await (const line of { [Symbol.asyncIterator]: () => this.lines }) this.lastWords += line;
    await this.ended;
    if (this.failure) throw this.failure;
  }

  of(way) {
    return this.durations.get(way);
  }
}

/**
 * Several processes of one program as one: where the system puts a process and its threads makes a
 * difference that stays for as long as it lives.
 */
export class Several {
  constructor(count, command, commandArguments) {
    this.programs = Array.from({ length: count }, () => new Program(command, commandArguments));
  }

  of(way) {
    return this.programs.flatMap((program) => program.of(way));
  }
}

/**
 * Lets the programs measure in turn, `turns` times `rounds` rounds each, in an order drawn anew for
 * each turn. A first turn warms up and is forgotten.
 */
export async function alternate(programs, turns, rounds) {
  for (let turn = -1; turn < turns; turn += 1) {
    for (const program of shuffled(programs)) {
      await program.measure(Math.ceil(rounds * program.share));
      if (turn < 0) program.durations.clear();
    }
  }
  for (const program of programs) await program.end();
}
