// Other processes, as the system's process listing (proc(5)) shows them to everybody.

import { spawnSync } from "node:child_process";
import fs from "node:fs";
import { eventually } from "./waiting.mjs";

export function allPids() {
  return fs.readdirSync("/proc").filter((name) => /^[0-9]+$/.test(name)).map(Number);
}

// What has ended in the meantime, or belongs to the kernel, reads as nothing.
function read(pid, file) {
  try {
    return fs.readFileSync(`/proc/${pid}/${file}`, "latin1");
  } catch {
    return "";
  }
}

export const commandLineOf = (pid) => read(pid, "cmdline").split("\0").slice(0, -1);

export const environmentOf = (pid) => read(pid, "environ").split("\0").slice(0, -1);

// The second field may hold any character, so count from its closing parenthesis.
function statOf(pid) {
  const text = read(pid, "stat");
  const [state, parent] = text.slice(text.lastIndexOf(")") + 2).split(" ");
  return { state, parent: Number(parent) };
}

/** A process that has ended but whose end nobody has taken notice of counts as ended. */
export function isAlive(pid) {
  const { state } = statOf(pid);
  return state !== undefined && state !== "" && state !== "Z" && state !== "X";
}

/** The living child of `parent` that runs the script, or undefined. */
export function scriptOf(parent, script) {
  return allPids().find(
    (pid) =>
      statOf(pid).parent === parent &&
      isAlive(pid) &&
      commandLineOf(pid)[1]?.endsWith(`/desktop/${script}`),
  );
}

/** Stops the process in its tracks; resolves when it stands still. */
export async function freeze(pid) {
  process.kill(pid, "SIGSTOP");
  await eventually(() => ["T", "Z", "X", "", undefined].includes(statOf(pid).state), "a halt");
  return isAlive(pid);
}

export const resume = (pid) => process.kill(pid, "SIGCONT");

/** Every other process whose command line or environment mentions `text`. */
export function processesThatMention(text) {
  const mentions = (list) => list.some((entry) => entry.includes(text));
  return allPids().filter(
    (pid) =>
      pid !== process.pid &&
      isAlive(pid) &&
      (mentions(commandLineOf(pid)) || mentions(environmentOf(pid))),
  );
}

/** Ends these processes by force. */
export function kill(pids) {
  for (const pid of pids) {
    try {
      process.kill(pid, "SIGKILL");
    } catch (error) {
      if (error.code !== "ESRCH") throw error;
    }
  }
}

/** Runs a program to its end; its standard output, or an error that shows what it said. */
export function run(program, args, { input = "", env = process.env, cwd } = {}) {
  const ended = spawnSync(program, args, { input, env, cwd, encoding: "utf8" });
  if (ended.error) throw ended.error;
  if (ended.status !== 0) {
    throw new Error(`${program} ${args[0]} ended with ${ended.status}: ${ended.stderr}`);
  }
  return ended.stdout;
}
