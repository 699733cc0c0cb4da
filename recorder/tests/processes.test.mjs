import assert from "node:assert/strict";
import fs from "node:fs";
import path from "node:path";
import test from "node:test";
import {
  isRunning,
  ownRecord,
  portableStartTime,
  readRecord,
  startTimeOf,
  stopProcess,
  writeOwnRecord,
} from "../desktop/lib/processes.mjs";
import { temporaryFolder } from "./support/bundle.mjs";
import { startStranger } from "./support/recorder.mjs";

test("a process is told by its id and its start time together", async (t) => {
  const stranger = await startStranger(t);
  assert.equal(isRunning(stranger), true);
  assert.equal(isRunning({ ...stranger, startTime: "another time" }), false);
  assert.equal(isRunning({ ...stranger, pid: process.pid }), false);
  assert.equal(startTimeOf(stranger.pid), stranger.startTime);
});

test("the start time is also had where there is no proc file system", async (t) => {
  const stranger = await startStranger(t);
  const startTime = portableStartTime(stranger.pid);
  assert.match(startTime, /^[A-Z][a-z]{2} [A-Z][a-z]{2} \d{1,2} \d\d:\d\d:\d\d \d{4}$/);
  assert.equal(portableStartTime(stranger.pid), startTime);
  await stopProcess(stranger);
  assert.equal(portableStartTime(stranger.pid), null);
});

test("a process that has ended does not run, even before it is reaped", async (t) => {
  const stranger = await startStranger(t);
  assert.equal(await stopProcess(stranger), true);
  assert.equal(startTimeOf(stranger.pid), null);
});

test("a process that ignores the request to end is ended by force", async (t) => {
  const stubborn = 'process.on("SIGTERM", () => {}); setInterval(() => {}, 1000)';
  const stranger = await startStranger(t, stubborn);
  assert.equal(await stopProcess(stranger, { stopGrace: 100 }), true);
  assert.equal(isRunning(stranger), false);
});

test("a process that does not match the record counts as gone and is left alone", async (t) => {
  const stranger = await startStranger(t);
  assert.equal(await stopProcess({ ...stranger, startTime: "another time" }), true);
  assert.equal(isRunning(stranger), true);
});

test("a record is written whole, and anything else is no record", () => {
  const file = path.join(temporaryFolder(), "process.json");
  assert.equal(readRecord(file), null);
  writeOwnRecord(file, { port: 3000 });
  assert.deepEqual(readRecord(file), { port: 3000, ...ownRecord() });
  assert.equal(fs.statSync(file).mode & 0o777, 0o600);
  // Ids 0 and 1 and negative ones would make a signal reach whole groups, or the system itself.
  for (const pid of [-1, 0, 1, 1.5, "7", null, 2 ** 60]) {
    fs.writeFileSync(file, JSON.stringify({ pid, startTime: "x" }));
    assert.equal(readRecord(file), null, String(pid));
  }
  for (const content of ["", "[]", "null", '{"pid":7}']) {
    fs.writeFileSync(file, content);
    assert.equal(readRecord(file), null, content);
  }
});
