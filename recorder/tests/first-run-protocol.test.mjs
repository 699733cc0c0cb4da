import assert from "node:assert/strict";
import fs from "node:fs";
import path from "node:path";
import { isLocked, tryLock } from "../desktop/lib/lock.mjs";
import { linesOf, parseRequest } from "../desktop/setup/requests.mjs";
import { serveApprovals } from "./support/approval.mjs";
import { stageBundle, temporaryFolder } from "./support/bundle.mjs";
import { Recorder, eventually } from "./support/recorder.mjs";
import { SetupScript, kStartValues, makeHome } from "./support/setup.mjs";
import { test } from "./support/test.mjs";

const kFailure = { ok: false, code: "setup_failed" };
const kMissing = { ok: false, code: "saved_peer_missing" };
const kResume = '{"action":"enrollment.resume","values":{}}';

const lineOf = (action, values = {}) => `${JSON.stringify({ action, values })}\n`;

test("one process answers many requests, in order, and ends with the input", async (t) => {
  const { layout } = makeHome();
  const setup = new SetupScript(t, layout.home);
  assert.deepEqual(await setup.request("enrollment.resume"), kMissing);
  assert.deepEqual(await setup.request("enrollment.poll"), kFailure);
  assert.deepEqual(await setup.request("enrollment.resume"), kMissing);
  assert.deepEqual(await setup.finish(), { status: 0, signal: null, rest: "" });
  assert.equal(setup.complaints, "");
});

test("requests that arrive together are answered one after the other", async (t) => {
  const approvals = await serveApprovals(t);
  const { layout } = makeHome({ DVR_APPROVAL_ORIGIN: approvals.origin });
  const setup = new SetupScript(t, layout.home);
  setup.write(
    lineOf("enrollment.start", kStartValues) + lineOf("nonsense") + lineOf("enrollment.poll"),
  );
  const first = await setup.nextReply();
  assert.equal(first.code, "enrollment_pending");
  assert.deepEqual(await setup.nextReply(), kFailure);
  assert.deepEqual(await setup.nextReply(), first);
  assert.equal((await setup.finish()).rest, "");
});

test("a request may arrive in pieces, even within a character", async (t) => {
  const approvals = await serveApprovals(t);
  const { layout } = makeHome({ DVR_APPROVAL_ORIGIN: approvals.origin });
  const setup = new SetupScript(t, layout.home);
  const values = { ...kStartValues, name: "Rekorder Küche" };
  const bytes = Buffer.from(lineOf("enrollment.start", values));
  const inCharacter = bytes.indexOf(0xc3) + 1;
  // The answer to the line before it shows that the first piece has been read, by itself.
  setup.write(Buffer.concat([Buffer.from(`${kResume}\n`), bytes.subarray(0, inCharacter)]));
  assert.deepEqual(await setup.nextReply(), kMissing);
  setup.write(bytes.subarray(inCharacter));
  assert.equal((await setup.nextReply()).code, "enrollment_pending");
  assert.equal(approvals.ledger.pendingRequests()[0].name, "Rekorder Küche");
});

test("lines are put together from any pieces", async () => {
  const text = `${kResume}\n\n{"ü":1}\r\nunfinished`;
  const expected = [kResume, "", '{"ü":1}\r'];
  for (const size of [1, 2, 3, 7, 1000]) {
    const bytes = Buffer.from(text);
    const pieces = [];
    for (let at = 0; at < bytes.length; at += size) pieces.push(bytes.subarray(at, at + size));
    const lines = [];
    for await (const line of linesOf(pieces)) lines.push(line.toString());
    assert.deepEqual(lines, expected, `pieces of ${size}`);
  }
});

test("a line that is too long counts as one, and the next one is read again", async () => {
  const limit = 65536;
  const pieces = ["a".repeat(limit), "\n", "b".repeat(limit + 1), "\nc\n", "d".repeat(3 * limit)];
  const lines = [];
  for await (const line of linesOf([...pieces, "\ne\n"].map((piece) => Buffer.from(piece)))) {
    lines.push(line && line.length);
  }
  assert.deepEqual(lines, [limit, null, 1, null, 1]);
});

test("what is not a request gets a failure, and the next request its answer", async (t) => {
  const { layout } = makeHome();
  const setup = new SetupScript(t, layout.home);
  const bad = [
    "",
    "   ",
    "nonsense",
    "[]",
    "null",
    "7",
    '"enrollment.resume"',
    "{}",
    '{"action":"enrollment.resume"}',
    '{"values":{}}',
    '{"action":7,"values":{}}',
    '{"action":"enrollment.resume","values":[]}',
    '{"action":"enrollment.resume","values":null}',
    '{"action":"enrollment.resume","values":"x"}',
    `${kResume}${kResume}`,
    '{"action":"Enrollment.resume","values":{}}',
    '{"action":"enrollment.resume ","values":{}}',
    '{"action":"__proto__","values":{}}',
    '{"action":"constructor","values":{}}',
    '{"action":"tls.configure\\u0000","values":{}}',
    "\u0000",
    `\u00ef${kResume}`,
    "[".repeat(60000),
  ];
  for (const line of bad) {
    setup.write(`${line}\n`);
    assert.deepEqual(await setup.nextReply(), kFailure, line.slice(0, 80));
  }
  setup.write(Buffer.from([0xff, 0xfe, 0x0a]));
  assert.deepEqual(await setup.nextReply(), kFailure);
  setup.write(Buffer.from('{"action":"\xff","values":{}}\n', "latin1"));
  assert.deepEqual(await setup.nextReply(), kFailure);
  setup.write(`${kResume}\r\n`);
  assert.deepEqual(await setup.nextReply(), kMissing);
});

test("a request of a megabyte gets one failure", async (t) => {
  const { layout } = makeHome();
  const setup = new SetupScript(t, layout.home);
  const path = `/${"a".repeat(1024 * 1024)}`;
  const values = { origin: "", certificateFile: path, keyFile: path, approveLocalCA: false };
  assert.deepEqual(await setup.request("tls.configure", values), kFailure);
  assert.deepEqual(await setup.request("enrollment.resume"), kMissing);
  assert.equal((await setup.finish()).rest, "");
});

test("input that ends in the middle of a line is no request", async (t) => {
  const { layout } = makeHome();
  const setup = new SetupScript(t, layout.home);
  setup.write(`${kResume}\n${kResume}`);
  assert.deepEqual(await setup.nextReply(), kMissing);
  assert.deepEqual(await setup.finish(), { status: 0, signal: null, rest: "" });
});

test("a request that was begun is answered although the input has ended", async (t) => {
  const { layout } = makeHome();
  const setup = new SetupScript(t, layout.home);
  setup.write(`${kResume}\n`);
  const { status, rest } = await setup.finish();
  assert.equal(status, 0);
  assert.equal(rest, `${JSON.stringify(kMissing)}\n`);
});

test("a termination request ends the script and frees its lock", async (t) => {
  const { layout } = makeHome();
  const setup = new SetupScript(t, layout.home);
  await setup.request("enrollment.resume");
  assert.equal(isLocked(layout.setupLockFile), true);
  assert.deepEqual(await setup.kill("SIGTERM"), { status: 0, signal: null });
  assert.equal(isLocked(layout.setupLockFile), false);
});

test("a termination request is honoured in the middle of a request too", async (t) => {
  const approvals = await serveApprovals(t);
  approvals.holdAnswers();
  const { layout } = makeHome({ DVR_APPROVAL_ORIGIN: approvals.origin });
  const setup = new SetupScript(t, layout.home);
  await setup.request("enrollment.resume");
  setup.write(lineOf("enrollment.start", kStartValues));
  await approvals.heldRequest;
  assert.deepEqual(await setup.kill("SIGTERM"), { status: 0, signal: null });
});

test("the lock is held from the start, to the end of the input", async (t) => {
  const { layout } = makeHome();
  const setup = new SetupScript(t, layout.home);
  await eventually(() => isLocked(layout.setupLockFile), "the lock is taken");
  await setup.finish();
  assert.equal(isLocked(layout.setupLockFile), false);
});

test("a script that was killed leaves no lock behind", async (t) => {
  const { layout } = makeHome();
  const setup = new SetupScript(t, layout.home);
  await setup.request("enrollment.resume");
  await setup.kill("SIGKILL");
  assert.equal(isLocked(layout.setupLockFile), false);
  const next = new SetupScript(t, layout.home);
  assert.deepEqual(await next.request("enrollment.resume"), kMissing);
});

test("who does not hold the lock does nothing, and works once it is free", async (t) => {
  const { layout } = makeHome();
  const lock = tryLock(layout.setupLockFile);
  const setup = new SetupScript(t, layout.home);
  assert.deepEqual(await setup.request("enrollment.resume"), kFailure);
  lock.release();
  assert.deepEqual(await setup.request("enrollment.resume"), kMissing);
  const second = new SetupScript(t, layout.home);
  assert.deepEqual(await second.request("enrollment.resume"), kFailure);
  await setup.finish();
  assert.deepEqual(await second.request("enrollment.resume"), kMissing);
});

test("an update asks for the setup to be closed first", async (t) => {
  const recorder = await Recorder.installed(t, stageBundle());
  const { home } = recorder.layout;
  const script = path.join(recorder.resources, "desktop", "first-run.mjs");
  const setup = new SetupScript(t, home, { script });
  assert.deepEqual(await setup.request("enrollment.resume"), kMissing);
  assert.equal((await recorder.update("upgrade")).code, "close_enrollment_first");
  await setup.finish();
  assert.equal((await recorder.update("upgrade")).code, "updated_stopped");
});

test("where nothing is installed every request fails and nothing is created", async (t) => {
  const folder = temporaryFolder();
  for (const home of [path.join(folder, "absent"), folder]) {
    const setup = new SetupScript(t, home);
    for (const action of ["enrollment.resume", "tls.configure", "enrollment.start"]) {
      assert.deepEqual(await setup.request(action), kFailure);
    }
    await setup.finish();
  }
  assert.deepEqual(fs.readdirSync(folder), []);
});

test("wrong arguments fail every request without a crash", async (t) => {
  const wrong = [[], ["--home"], ["--home", "relative"], ["--home", ""], ["--other", "/tmp"]];
  for (const args of wrong) {
    const setup = new SetupScript(t, "", { args });
    assert.deepEqual(await setup.request("enrollment.resume"), kFailure);
    assert.equal((await setup.finish()).status, 0);
  }
});

test("damaged settings fail every request, whatever they say", async (t) => {
  const { layout, editSettings } = makeHome();
  const setup = new SetupScript(t, layout.home);
  const damages = [
    { DVR_PUBLIC_ORIGIN: "http://dvr.example.org" },
    { DVR_PUBLIC_ORIGIN: 7 },
    { DVR_APPROVAL_ORIGIN: "http://approvals.example.org" },
    { DVR_APPROVAL_ORIGIN: "https://127.0.0.1:3999" },
    { DVR_PORT: "3000" },
  ];
  const good = fs.readFileSync(layout.settingsFile);
  for (const damage of damages) {
    editSettings(damage);
    const what = JSON.stringify(damage);
    assert.deepEqual(await setup.request("enrollment.resume"), kFailure, what);
    fs.writeFileSync(layout.settingsFile, good);
  }
  assert.deepEqual(await setup.request("enrollment.resume"), kMissing);
});

test("a request is an action and its values, nothing else is looked at", () => {
  const request = parseRequest(Buffer.from('{"action":"a","values":{"b":1},"more":2}'));
  assert.deepEqual(request, { action: "a", values: { b: 1 } });
});
