import assert from "node:assert/strict";
import { spawn } from "node:child_process";
import { once } from "node:events";
import fs from "node:fs";
import path from "node:path";
import test from "node:test";
import { isLocked, tryLock, waitForLock } from "../desktop/lib/lock.mjs";
import { temporaryFolder } from "./support/bundle.mjs";
import { outputOf, startStranger } from "./support/recorder.mjs";

const kLockModule = new URL("../desktop/lib/lock.mjs", import.meta.url).href;
const newLockFile = () => path.join(temporaryFolder(), "test.lock");

/** Runs `program`, a module body that may use the lock module and `file`. */
function spawnProgram(program, file) {
  const source = `import { tryLock, waitForLock } from ${JSON.stringify(kLockModule)};
    import fs from "node:fs";
    const file = ${JSON.stringify(file)};
    ${program}`;
  const words = ["--input-type=module", "-e", source];
  return spawn(process.execPath, words, { stdio: ["ignore", "pipe", "inherit"] });
}

test("a lock has one owner until it is released", () => {
  const file = newLockFile();
  assert.equal(isLocked(file), false);
  const lock = tryLock(file);
  assert.equal(isLocked(file), true);
  assert.equal(tryLock(file), null);
  lock.release();
  assert.equal(isLocked(file), false);
  assert.notEqual(tryLock(file), null);
});

test("a lock's files stay few and private, however often it is used", () => {
  const file = newLockFile();
  for (let count = 0; count < 20; ++count) tryLock(file).release();
  const names = fs.readdirSync(path.dirname(file));
  assert.ok(names.length <= 2, names.join(" "));
  for (const name of names) {
    const { mode } = fs.statSync(path.join(path.dirname(file), name));
    assert.equal(mode & 0o777, 0o600);
  }
});

test("a lock dies with its owner", async () => {
  const file = newLockFile();
  const program = 'tryLock(file); console.log("locked"); setInterval(() => {}, 1000)';
  const owner = spawnProgram(program, file);
  await once(owner.stdout, "data");
  assert.equal(isLocked(file), true);
  owner.kill("SIGKILL");
  await once(owner, "exit");
  assert.equal(isLocked(file), false);
  assert.notEqual(tryLock(file), null);
});

test("a lock whose owner's id went to another process is free", async (t) => {
  const file = newLockFile();
  const stranger = await startStranger(t);
  const record = { pid: stranger.pid, startTime: "another time" };
  fs.writeFileSync(`${file}.7`, JSON.stringify(record));
  assert.equal(isLocked(file), false);
  assert.notEqual(tryLock(file), null);
});

test("a lock that nobody can read is free", () => {
  for (const content of ["", "{", "null", "{}", '{"pid":"1","startTime":1}']) {
    const file = newLockFile();
    fs.writeFileSync(`${file}.7`, content);
    assert.equal(isLocked(file), false, content);
    assert.notEqual(tryLock(file), null, content);
  }
});

test("waiting for a lock ends when it is free, when time is up, or when told to", async () => {
  const file = newLockFile();
  const lock = tryLock(file);
  assert.equal(await waitForLock(file, 0), null);
  const giveUp = () => {
    throw new Error("given up");
  };
  await assert.rejects(waitForLock(file, 60000, giveUp), /given up/);
  const waiting = waitForLock(file, 60000);
  lock.release();
  assert.notEqual(await waiting, null);
});

test("contenders in many processes are never inside together", async () => {
  const file = newLockFile();
  const shared = path.join(path.dirname(file), "inside");
  // Some leave by release, some die inside: the next owner finds their traces, never their company.
  const program = `
    for (let round = 0; round < 25; ++round) {
      const lock = await waitForLock(file, 60000);
      fs.writeFileSync(${JSON.stringify(shared)}, String(process.pid));
      for (let look = 0; look < 50; ++look) {
        const seen = fs.readFileSync(${JSON.stringify(shared)}, "utf8");
        if (seen !== String(process.pid)) console.log("met", seen);
      }
      if (round === 20 && process.pid % 2) process.kill(process.pid, "SIGKILL");
      lock.release();
    }`;
  const contenders = Array.from({ length: 4 }, () => spawnProgram(program, file));
  const outputs = await Promise.all(contenders.map(outputOf));
  assert.equal(Buffer.concat(outputs).toString(), "");
});
