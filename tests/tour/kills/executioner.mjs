// Ends a process by force at a given moment; a thread of its own, so that nothing that the campaign
// itself does in the meantime delays it.
//
// workerData: { delay, changes, folders }. Once it is told the process: after `delay` milliseconds,
// or with so many changes in the folders (0: never) if that comes first. A moment among a few
// writes that follow close upon each other is next to never found by the clock.

import fs from "node:fs";
import { parentPort, workerData } from "node:worker_threads";

const { delay, changes, folders } = workerData;
const watchers = changes === 0 ? [] : folders.map((folder) => fs.watch(folder, count));
let pid = null;
let seen = 0;

function count() {
  if (pid === null) return;
  seen += 1;
  if (seen === changes) end(`at change ${changes} beside the settings`);
}

function end(moment) {
  if (pid === null) return;
  const time = process.hrtime.bigint();
  try {
    process.kill(pid, "SIGKILL");
  } catch (error) {
    if (error.code !== "ESRCH") throw error; // it ended by itself
  }
  pid = null;
  for (const watcher of watchers) watcher.close();
  parentPort.postMessage({ moment, time });
  parentPort.close();
}

parentPort.once("message", (victim) => {
  pid = victim;
  setTimeout(() => end(`after ${Math.round(delay)} ms`), delay);
});
parentPort.postMessage("ready");
