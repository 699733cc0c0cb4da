// Exclusive locks between scripts. A lock dies with its owner, however that one ends: the record in
// the lock names the owner's process id and start time, so neither a crash nor a reused id leaves
// anything locked.
//
// A lock is a series of numbered files, "name.1", "name.2", ...; only the highest counts. It is
// free when it is released or its owner is gone, and is then taken by creating the next number,
// which succeeds for one contender only. The highest number is never removed, so a contender acting
// on an old listing finds a higher number after its own and steps back. (Removing a dead owner's
// file and creating it anew has no such safety: of two contenders who both saw it dead, the slower
// one removes the faster one's fresh lock.)

import crypto from "node:crypto";
import fs from "node:fs";
import path from "node:path";
import { readJsonObject } from "./files.mjs";
import { isRecord, isRunning, ownRecord, waitUntil } from "./processes.mjs";

/** Takes the lock `file` if it is free: an object with `release()`, or null when it is held. */
export function tryLock(file) {
  const own = writeCandidate(file, ownRecord());
  try {
    for (;;) {
      const latest = latestGeneration(file);
      if (isHeld(file, latest)) return null;
      const mine = latest + 1;
      if (!linkIfAbsent(own, generationFile(file, mine))) continue;
      if (latestGeneration(file) !== mine) {
        fs.rmSync(generationFile(file, mine), { force: true });
        continue;
      }
      removeOlder(file, mine);
      return { release: () => release(file, mine) };
    }
  } finally {
    fs.rmSync(own, { force: true });
  }
}

/** Does a living process hold the lock `file`? */
export function isLocked(file) {
  return isHeld(file, latestGeneration(file));
}

/**
 * Waits for the lock `file`, up to `milliseconds`; null when it did not become free. `beforeTry`
 * runs before every attempt and may throw to give up.
 */
export async function waitForLock(file, milliseconds, beforeTry = () => {}) {
  let lock = null;
  await waitUntil(() => {
    beforeTry();
    lock = tryLock(file);
    return lock !== null;
  }, milliseconds);
  return lock;
}

const generationFile = (file, generation) => `${file}.${generation}`;

function generationsOf(file) {
  const prefix = `${path.basename(file)}.`;
  return fs
    .readdirSync(path.dirname(file))
    .filter((name) => name.startsWith(prefix))
    .map((name) => name.slice(prefix.length))
    .filter((generation) => /^[1-9][0-9]{0,14}$/.test(generation))
    .map(Number);
}

function latestGeneration(file) {
  try {
    return Math.max(0, ...generationsOf(file));
  } catch (error) {
    if (error.code === "ENOENT") return 0;
    throw error;
  }
}

function isHeld(file, generation) {
  if (generation === 0) return false;
  let record;
  try {
    record = readJsonObject(generationFile(file, generation));
  } catch (error) {
    if (error.syscall !== undefined) throw error;
    // Records appear whole, so damage is an accident of the disk: no owner can be told from it.
    return false;
  }
  // Gone between listing and reading: a later owner removed it.
  if (record === null) return isLocked(file);
  return isRecord(record) && isRunning(record);
}

function release(file, generation) {
  const free = writeCandidate(file, { released: true });
  fs.renameSync(free, generationFile(file, generation));
}

// Not made durable: a lock means nothing after a restart of the computer.
function writeCandidate(file, record) {
  const candidate = `${file}.${crypto.randomBytes(8).toString("hex")}.candidate`;
  fs.writeFileSync(candidate, JSON.stringify(record), { flag: "wx", mode: 0o600 });
  return candidate;
}

function linkIfAbsent(existing, name) {
  try {
    fs.linkSync(existing, name);
    return true;
  } catch (error) {
    if (error.code === "EEXIST") return false;
    throw error;
  }
}

// The predecessor stays, so that a listing made while numbers come and go cannot miss all of them.
function removeOlder(file, generation) {
  for (const older of generationsOf(file).filter((number) => number < generation - 1)) {
    fs.rmSync(generationFile(file, older), { force: true });
  }
}
