// Telling our own processes from strangers. A process id alone proves nothing: ids are reused after
// a crash or a restart of the computer. A record therefore names a process by id and start time,
// and only a process that still matches its record is ever asked anything or sent a signal.

import { execFileSync } from "node:child_process";
import fs from "node:fs";
import { setTimeout as delay } from "node:timers/promises";
import { readJsonObject, writePrivateJson } from "./files.mjs";

const kPollInterval = 20; // milliseconds
const kStopGrace = 15000; // milliseconds between the request to end and the end by force
const kKillGrace = 5000; // milliseconds

/** When process `pid` started, as an opaque text; null when there is none, or only its remains. */
export function startTimeOf(pid) {
  return process.platform === "linux" ? linuxStartTime(pid) : portableStartTime(pid);
}

// proc_pid_stat(5): the second field may hold any character, so count from its closing parenthesis;
// then field 0 is the state and field 19 the start in clock ticks after boot.
function linuxStartTime(pid) {
  let text;
  try {
    text = fs.readFileSync(`/proc/${pid}/stat`, "latin1");
  } catch (error) {
    if (error.code === "ENOENT" || error.code === "ESRCH") return null;
    throw error;
  }
  const fields = text.slice(text.lastIndexOf(")") + 2).split(" ");
  if (fields[0] === "Z" || fields[0] === "X") return null;
  const boot = fs.readFileSync("/proc/sys/kernel/random/boot_id", "latin1").trim();
  return `${boot}/${fields[19]}`;
}

// ps(1): the start is a date in the local format and time zone unless both are fixed.
export function portableStartTime(pid) {
  let text;
  try {
    text = execFileSync("/bin/ps", ["-o", "stat=,lstart=", "-p", String(pid)], {
      encoding: "latin1",
      env: { LC_ALL: "C", TZ: "UTC" },
      stdio: ["ignore", "pipe", "ignore"],
    }).trim();
  } catch (error) {
    if (error.status === 1) return null;
    throw error;
  }
  const [state, ...start] = text.split(/\s+/);
  return state === "" || state.startsWith("Z") ? null : start.join(" ");
}

/** A record of this very process, with any further members. */
export function ownRecord(members = {}) {
  return { ...members, pid: process.pid, startTime: startTimeOf(process.pid) };
}

/** A long-lived process calls this when it is ready to serve: from then on it can be found. */
export function writeOwnRecord(file, members = {}) {
  writePrivateJson(file, ownRecord(members));
}

/** The record in `file`, or null when there is none that names a process. */
export function readRecord(file) {
  let record;
  try {
    record = readJsonObject(file);
  } catch {
    return null;
  }
  return record !== null && isRecord(record) ? record : null;
}

export function isRecord(record) {
  return Number.isSafeInteger(record.pid) && record.pid > 1 && typeof record.startTime === "string";
}

/** Is the process of this record still the one that runs under its id? */
export function isRunning(record) {
  return startTimeOf(record.pid) === record.startTime;
}

/**
 * Asks the process of this record to end, waits, and ends it by force when it will not. Resolves to
 * true when it is gone. A process that no longer matches the record counts as gone and is left
 * alone.
 */
export async function stopProcess(record, { stopGrace = kStopGrace, killGrace = kKillGrace } = {}) {
  return (
    (await signalAndWait(record, "SIGTERM", stopGrace)) ||
    (await signalAndWait(record, "SIGKILL", killGrace))
  );
}

async function signalAndWait(record, signal, grace) {
  if (!isRunning(record)) return true;
  try {
    process.kill(record.pid, signal);
  } catch (error) {
    if (error.code !== "ESRCH") throw error;
  }
  return waitUntil(() => !isRunning(record), grace);
}

/** Polls `condition`, which may be asynchronous, until it holds (true) or time is up (false). */
export async function waitUntil(condition, milliseconds) {
  const deadline = performance.now() + milliseconds;
  for (;;) {
    if (await condition()) return true;
    if (performance.now() >= deadline) return false;
    await delay(kPollInterval);
  }
}
