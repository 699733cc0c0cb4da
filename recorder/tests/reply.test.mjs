import assert from "node:assert/strict";
import { spawn } from "node:child_process";
import { once } from "node:events";
import test from "node:test";
import { encodeReply, kReplySizeLimit } from "../desktop/lib/reply.mjs";
import { outputOf } from "./support/recorder.mjs";

const kReplyModule = new URL("../desktop/lib/reply.mjs", import.meta.url).href;
const kFailure = { ok: false, code: "operator_failed" };

function spawnScript(action) {
  const source = `import { refuse, runScript } from ${JSON.stringify(kReplyModule)};
    await runScript("operator_failed", ${action});`;
  const words = ["--input-type=module", "-e", source];
  return spawn(process.execPath, words, { stdio: ["ignore", "pipe", "ignore"] });
}

async function replyOf(action) {
  return JSON.parse((await outputOf(spawnScript(action))).toString());
}

test("a script's answer is its one reply", async () => {
  assert.deepEqual(await replyOf('async () => ({ ok: true, code: "ready" })'), {
    ok: true,
    code: "ready",
  });
});

test("whatever goes wrong in a script ends in one reply", async () => {
  const actions = {
    "thrown at once": '() => { throw new Error("secret path"); }',
    "rejected": "async () => JSON.parse('{')",
    "thrown by nobody's caller": "() => new Promise(() => setTimeout(() => { throw 1; }))",
    "rejected without a listener": "() => new Promise(() => { Promise.reject(new Error()); })",
    "not an object that JSON can carry": "() => ({ ok: true, code: 1n })",
    "too large": '() => ({ ok: true, code: "ready", url: "x".repeat(9000) })',
  };
  for (const [name, action] of Object.entries(actions)) {
    assert.deepEqual(await replyOf(action), kFailure, name);
  }
});

test("a refusal is the reply's code", async () => {
  const reply = await replyOf('() => refuse("origin_required")');
  assert.deepEqual(reply, { ok: false, code: "origin_required" });
});

test("a failure after the answer adds nothing to it", async () => {
  const action = `() => { setTimeout(() => { throw 1; }); return { ok: true, code: "ready" }; }`;
  assert.deepEqual(await replyOf(action), { ok: true, code: "ready" });
});

test("the size limit counts bytes and includes the line feed", () => {
  const frame = JSON.stringify({ text: "" }).length;
  const largest = { text: "x".repeat(kReplySizeLimit - frame - 1) };
  assert.equal(encodeReply(largest, "operator_failed"), JSON.stringify(largest));
  for (const text of [`${largest.text}x`, "\u00e9".repeat(kReplySizeLimit / 2)]) {
    assert.deepEqual(JSON.parse(encodeReply({ text }, "operator_failed")), kFailure);
  }
});

test("a reply is written whole to a pipe that is full and does not wait", async () => {
  const source = `import fs from "node:fs";
    import { writeWhole } from ${JSON.stringify(kReplyModule)};
    process.stdout.write("");
    process.stdout._handle.setBlocking?.(false);
    writeWhole(1, "x".repeat(1000000));`;
  const words = ["--input-type=module", "-e", source];
  const child = spawn(process.execPath, words, { stdio: ["ignore", "pipe", "ignore"] });
  assert.equal((await outputOf(child)).length, 1000000);
});

test("a reader that has gone does not keep a script from ending", async () => {
  const child = spawnScript('async () => ({ ok: true, code: "ready" })');
  child.stdout.destroy();
  const [status, signal] = await once(child, "exit");
  assert.deepEqual([status, signal], [0, null]);
});
