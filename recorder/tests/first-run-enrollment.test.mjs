import assert from "node:assert/strict";
import fs from "node:fs";
import http from "node:http";
import path from "node:path";
import { writePrivateJson } from "../desktop/lib/files.mjs";
import { ApprovalClient } from "../desktop/setup/approval-client.mjs";
import { makeClock, serveApprovals } from "./support/approval.mjs";
import {
  codeOf,
  kOrigin,
  kYear,
  makeCase,
  makeEnrollment,
  makePairedCase,
  pair,
} from "./support/enrollment.mjs";
import { snapshotOf } from "./support/recorder.mjs";
import { SetupScript, kInstallationId, kStartValues, makeHome } from "./support/setup.mjs";
import { test } from "./support/test.mjs";

const kUserCode = /^[BCDFGHJKLMNPQRSTVWXZ]{4}-[0-9]{4}$/;

test("an approval is asked for, waited for, granted and saved", async (t) => {
  const { approvals, home, setup } = await makeCase(t);
  const started = await setup.request("enrollment.start", kStartValues);
  assert.deepEqual(started, { ok: true, code: "enrollment_pending", userCode: started.userCode });
  assert.match(started.userCode, kUserCode);
  const [request] = approvals.ledger.pendingRequests();
  assert.equal(request.userCode, started.userCode);
  assert.equal(request.name, "Desktop DVR");
  assert.equal(request.server, kOrigin);
  assert.equal(request.installation, kInstallationId);
  assert.equal(request.recordingAccess, "private");

  assert.deepEqual(await setup.request("enrollment.poll"), started);
  assert.equal(fs.existsSync(home.layout.accountFile), false);
  approvals.approveAll();
  const paired = { ok: true, code: "enrollment_paired" };
  assert.deepEqual(await setup.request("enrollment.poll"), paired);
  assert.deepEqual(await setup.request("enrollment.resume"), paired);
  assert.deepEqual(await setup.request("enrollment.poll"), paired);

  const saved = home.read(home.layout.accountFile);
  assert.equal(saved.service, approvals.origin);
  assert.equal(saved.scope.server, kOrigin);
  assert.equal(saved.scope.installation, kInstallationId);
  assert.equal(saved.scope.account, "owner");
  assert.ok(saved.leaseExpiresAt > Date.now());
  assert.equal(fs.statSync(home.layout.accountFile).mode & 0o777, 0o600);
  assert.equal(fs.existsSync(home.layout.enrollmentFile), false);
  assert.equal(JSON.stringify(approvals.state).includes(saved.token), false);
});

test("asking twice shows the same code, also after the window was closed", async (t) => {
  const { approvals, home, setup } = await makeCase(t);
  const first = await setup.request("enrollment.start", kStartValues);
  assert.deepEqual(await setup.request("enrollment.start", kStartValues), first);
  await setup.finish();

  const later = new SetupScript(t, home.layout.home);
  assert.deepEqual(await later.request("enrollment.poll"), first);
  assert.deepEqual(await later.request("enrollment.start", kStartValues), first);
  assert.equal(approvals.ledger.pendingRequests().length, 1);
  await later.kill("SIGKILL");

  approvals.approveAll();
  const last = new SetupScript(t, home.layout.home);
  assert.equal(await last.code("enrollment.poll"), "enrollment_paired");
});

test("whoever checks before the interval is over is told to wait, without a code", async (t) => {
  const now = makeClock();
  const { origin, approveAll } = await serveApprovals(t, { now, intervalMs: 5000 });
  const enrollment = makeEnrollment({ home: makeHome({ origin: kOrigin }), origin, now });
  const { userCode } = await enrollment.start(kStartValues);
  const wait = { ok: true, code: "enrollment_pending" };

  assert.deepEqual(await enrollment.poll(), wait);
  now.advance(4999);
  assert.deepEqual(await enrollment.poll(), wait);
  now.advance(1);
  assert.deepEqual(await enrollment.poll(), { ...wait, userCode });
  assert.deepEqual(await enrollment.poll(), wait);
  approveAll();
  assert.deepEqual(await enrollment.poll(), wait);
  now.advance(5000);
  assert.equal((await enrollment.poll()).code, "enrollment_paired");
});

test("a service that asks to slow down is given five more seconds each time", async (t) => {
  const clientTime = makeClock();
  const serviceTime = makeClock();
  const { origin } = await serveApprovals(t, { now: serviceTime, intervalMs: 5000 });
  const home = makeHome({ origin: kOrigin });
  const enrollment = makeEnrollment({ home, origin, now: clientTime });
  await enrollment.start(kStartValues);

  // To the service, whose clock stands still, every one of these comes too early.
  clientTime.advance(5000);
  assert.deepEqual(await enrollment.poll(), { ok: true, code: "enrollment_pending" });
  assert.equal(home.read(home.layout.enrollmentFile).intervalMs, 10000);
  clientTime.advance(10000);
  assert.deepEqual(await enrollment.poll(), { ok: true, code: "enrollment_pending" });
  assert.equal(home.read(home.layout.enrollmentFile).intervalMs, 15000);
});

test("a clock that is set back does not lengthen the wait", async (t) => {
  const now = makeClock();
  const { origin, approveAll } = await serveApprovals(t, { intervalMs: 0 });
  const enrollment = makeEnrollment({ home: makeHome({ origin: kOrigin }), origin, now });
  await enrollment.start(kStartValues);
  approveAll();
  now.advance(-kYear);
  assert.equal((await enrollment.poll()).code, "enrollment_paired");
});

test("a refused request is over and can be made anew", async (t) => {
  const { approvals, setup } = await makeCase(t);
  const { userCode } = await setup.request("enrollment.start", kStartValues);
  approvals.ledger.decide(userCode, false);
  assert.equal(await setup.code("enrollment.poll"), "setup_failed");
  assert.equal(await setup.code("enrollment.poll"), "setup_failed");
  const next = await setup.request("enrollment.start", kStartValues);
  assert.match(next.userCode, kUserCode);
  assert.notEqual(next.userCode, userCode);
});

test("a request that nobody decided on lapses", async (t) => {
  const now = makeClock();
  const { origin } = await serveApprovals(t, { now });
  const enrollment = makeEnrollment({ home: makeHome({ origin: kOrigin }), origin, now });
  const { userCode } = await enrollment.start(kStartValues);
  now.advance(10 * 60 * 1000);
  assert.equal(await codeOf(enrollment.poll()), "setup_failed");
  assert.notEqual((await enrollment.start(kStartValues)).userCode, userCode);
});

test("a grant whose answer was lost is there at the next check", async (t) => {
  const { approvals, home, setup } = await makeCase(t);
  await setup.request("enrollment.start", kStartValues);
  approvals.approveAll();
  approvals.loseNextAnswer();
  assert.equal(await setup.code("enrollment.poll"), "setup_failed");
  assert.equal(fs.existsSync(home.layout.accountFile), false);
  assert.equal(await setup.code("enrollment.poll"), "enrollment_paired");
});

test("a fresh approval never replaces an account, a login or an owner", async (t) => {
  const { home, setup } = await makePairedCase(t);
  const before = snapshotOf(home.layout.configFolder);
  const start = () => setup.code("enrollment.start", kStartValues);
  assert.equal(await start(), "existing_state_requires_dashboard");
  assert.deepEqual(snapshotOf(home.layout.configFolder), before);

  // The account is lost, but the recordings still say that they are somebody's.
  fs.rmSync(home.layout.accountFile);
  assert.equal(await start(), "existing_state_requires_dashboard");
  const [owner] = fs.readdirSync(home.storage);
  fs.rmSync(path.join(home.storage, owner));
  writePrivateJson(home.layout.loginFile, {});
  assert.equal(await start(), "existing_state_requires_dashboard");
  fs.rmSync(home.layout.loginFile);
  assert.equal(await start(), "enrollment_pending");
});

test("recordings that were made before any approval are in nobody's way", async (t) => {
  const parts = await makeCase(t);
  fs.writeFileSync(path.join(parts.home.storage, "first.segment"), "frames");
  await pair(parts);
});

test("without the recording disk nothing is asked for, a saved approval counts", async (t) => {
  const parts = await makeCase(t);
  const { home, setup } = parts;
  const elsewhere = `${home.storage}-unplugged`;
  fs.renameSync(home.storage, elsewhere);
  assert.equal(await setup.code("enrollment.start", kStartValues), "setup_failed");
  fs.renameSync(elsewhere, home.storage);
  await pair(parts);
  fs.renameSync(home.storage, elsewhere);
  assert.equal(await setup.code("enrollment.resume"), "enrollment_paired");
});

test("a service that answers nonsense changes nothing", async (t) => {
  const answers = ["", "[]", "null", "{", '{"active":1}', "x".repeat(100000), '{"user_code":7}'];
  let index = 0;
  const server = http.createServer((request, response) => response.end(answers[index]));
  await new Promise((resolve) => server.listen(0, "127.0.0.1", resolve));
  t.after(() => server.close());
  const origin = `http://127.0.0.1:${server.address().port}`;
  const client = new ApprovalClient(origin);
  for (index = 0; index < answers.length; index += 1) {
    const what = answers[index].slice(0, 20);
    assert.equal(await client.requestApproval({}), null, what);
    assert.equal(await client.poll("code"), null, what);
    assert.equal(await client.inspect("token"), null, what);
    assert.equal(await client.renew("token", "operation"), null, what);
  }
});

test("a request without its constants is refused", async (t) => {
  const { setup, approvals } = await makeCase(t);
  const bad = [
    {},
    { name: "Desktop DVR" },
    { name: "", recordingAccess: "private" },
    { name: " ", recordingAccess: "private" },
    { name: "a\u0007b", recordingAccess: "private" },
    { name: "x".repeat(65), recordingAccess: "private" },
    { name: "Desktop DVR", recordingAccess: "public" },
    { name: ["Desktop DVR"], recordingAccess: "private" },
  ];
  for (const values of bad) {
    assert.equal(await setup.code("enrollment.start", values), "setup_failed");
  }
  assert.deepEqual(approvals.ledger.pendingRequests(), []);
});
