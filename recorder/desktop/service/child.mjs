// Long-lived processes of an installation: started so that they outlive the script and hold none of
// its streams, found again through the record that each writes once it serves.

import { spawn } from "node:child_process";
import fs from "node:fs";
import {
  isRunning,
  readRecord,
  startTimeOf,
  stopProcess,
  waitUntil,
} from "../lib/processes.mjs";

const kHealthLimit = 20000; // milliseconds from the launch to the first healthy answer

/**
 * Starts `script` under the installed runtime. All three streams are closed: the companion waits
 * for the end of the action script's output, and a descendant that kept it open would keep it
 * waiting.
 */
export function launch(layout, script) {
  const child = spawn(layout.runtimeFile, [script, "--home", layout.home], {
    cwd: layout.home,
    detached: true,
    stdio: "ignore",
  });
  child.unref();
  const ended = child.pid === undefined;
  const launched = { pid: child.pid, startTime: null, ended, exitCode: null };
  child.once("error", () => (launched.ended = true));
  child.once("exit", (exitCode) => Object.assign(launched, { ended: true, exitCode }));
  if (!launched.ended) launched.startTime = startTimeOf(child.pid);
  return launched;
}

/**
 * Waits for `probe` to resolve to a verdict: true or false, undefined while it is worth waiting on.
 * Without a true one in time the launched process is stopped, and the answer is false.
 */
export async function waitForHealth(launched, probe) {
  let verdict;
  await waitUntil(async () => {
    verdict = await probe();
    return verdict !== undefined || launched.ended;
  }, kHealthLimit);
  if (verdict === true) return true;
  if (!launched.ended) await stopProcess(launched);
  return false;
}

/** Ends the process recorded in `file`, if it runs. True when it is gone. */
export async function endProcess(file) {
  const record = readRecord(file);
  if (record !== null && !(await stopProcess(record))) return false;
  fs.rmSync(file, { force: true });
  return true;
}

/** Does the process recorded in `file` run? */
export function isRecordedRunning(file) {
  const record = readRecord(file);
  return record !== null && isRunning(record);
}
