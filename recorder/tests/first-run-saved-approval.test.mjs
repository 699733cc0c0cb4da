import assert from "node:assert/strict";
import fs from "node:fs";
import http from "node:http";
import { writePrivateJson } from "../desktop/lib/files.mjs";
import { makeClock, serveApprovals } from "./support/approval.mjs";
import {
  codeOf,
  kOrigin,
  kYear,
  makeCase,
  makeEnrollment,
  makePairedCase,
} from "./support/enrollment.mjs";
import { snapshotOf } from "./support/recorder.mjs";
import { kStartValues, makeHome } from "./support/setup.mjs";
import { test } from "./support/test.mjs";

test("nothing to check, nothing to resume, nothing to renew", async (t) => {
  const { setup } = await makeCase(t);
  assert.equal(await setup.code("enrollment.poll"), "setup_failed");
  assert.equal(await setup.code("enrollment.resume"), "saved_peer_missing");
  assert.equal(await setup.code("enrollment.renew"), "saved_peer_missing");
});

test("a saved approval that is damaged or open to others does not count as one", async (t) => {
  const { home, setup } = await makePairedCase(t);
  const { accountFile } = home.layout;
  const good = fs.readFileSync(accountFile);
  const newer = good.toString().replace('"version": 1', '"version": 2');
  const bad = ["", "{", "[]", "{}", '{"version":1}', newer];
  for (const content of bad) {
    fs.writeFileSync(accountFile, content);
    assert.equal(await setup.code("enrollment.resume"), "saved_peer_missing", content);
    assert.equal(await setup.code("enrollment.renew"), "saved_peer_missing", content);
    assert.equal(fs.readFileSync(accountFile, "utf8"), content);
  }
  fs.writeFileSync(accountFile, good);
  fs.chmodSync(accountFile, 0o644);
  assert.equal(await setup.code("enrollment.resume"), "saved_peer_missing");
  fs.chmodSync(accountFile, 0o600);
  assert.equal(await setup.code("enrollment.resume"), "enrollment_paired");
});

test("a saved approval of another scope is left alone and never sent about", async (t) => {
  const { approvals, home, setup } = await makePairedCase(t);
  const saved = home.read(home.layout.accountFile);
  const expectMismatch = async (what) => {
    const before = snapshotOf(home.layout.configFolder);
    assert.equal(await setup.code("enrollment.resume"), "saved_peer_scope_mismatch", what);
    assert.deepEqual(snapshotOf(home.layout.configFolder), before, what);
  };

  home.editSettings({ DVR_PUBLIC_ORIGIN: "https://moved.example.org:8443" });
  await expectMismatch("server");
  assert.equal(await setup.code("enrollment.renew"), "saved_peer_scope_mismatch");
  home.editSettings({ DVR_PUBLIC_ORIGIN: kOrigin });

  const marker = home.read(home.layout.marker);
  writePrivateJson(home.layout.marker, { ...marker, installationId: "another" });
  await expectMismatch("installation");
  writePrivateJson(home.layout.marker, marker);

  const scope = { ...saved.scope, account: "somebody else" };
  writePrivateJson(home.layout.accountFile, { ...saved, scope });
  await expectMismatch("account");
  writePrivateJson(home.layout.accountFile, saved);

  // A credential is never shown to a service that did not give it out.
  let visits = 0;
  const other = http.createServer((request, response) => {
    visits += 1;
    response.end();
  });
  await new Promise((resolve) => other.listen(0, "127.0.0.1", resolve));
  t.after(() => other.close());
  home.editSettings({ DVR_APPROVAL_ORIGIN: `http://127.0.0.1:${other.address().port}` });
  await expectMismatch("service");
  assert.equal(visits, 0);

  home.editSettings({ DVR_APPROVAL_ORIGIN: approvals.origin });
  assert.equal(await setup.code("enrollment.resume"), "enrollment_paired");
});

test("an expired lease asks for renewal, and renewal mends it", async (t) => {
  const now = makeClock(Date.now() - kYear);
  const { home, setup } = await makePairedCase(t, { now });
  const before = snapshotOf(home.layout.configFolder);
  assert.equal(await setup.code("enrollment.resume"), "saved_peer_lease_invalid");
  assert.deepEqual(snapshotOf(home.layout.configFolder), before);
  now.advance(kYear);
  assert.equal(await setup.code("enrollment.renew"), "enrollment_paired");
  assert.equal(await setup.code("enrollment.resume"), "enrollment_paired");
});

test("the service's word on a lease counts, not only the saved date", async (t) => {
  const now = makeClock();
  const { origin, approveAll } = await serveApprovals(t, { now, leaseMs: 1000 });
  const home = makeHome({ origin: kOrigin });
  const enrollment = makeEnrollment({ home, origin, now: makeClock(Date.now() - kYear) });
  await enrollment.start(kStartValues);
  approveAll();
  assert.equal((await enrollment.poll()).code, "enrollment_paired");
  now.advance(1000);
  assert.equal(await codeOf(enrollment.resume()), "saved_peer_lease_invalid");
});

test("a renewal replaces the credential and lengthens the lease", async (t) => {
  const now = makeClock(Date.now() - 1000000);
  const { home, setup } = await makePairedCase(t, { now });
  const before = home.read(home.layout.accountFile);
  now.advance(1000000);
  assert.equal(await setup.code("enrollment.renew"), "enrollment_paired");
  const after = home.read(home.layout.accountFile);
  assert.notEqual(after.token, before.token);
  assert.ok(after.leaseExpiresAt > before.leaseExpiresAt);
  assert.deepEqual(after.scope, before.scope);
  assert.equal(after.renewal, null);
});

test("a renewal that the service does not answer is kept, and its retry succeeds", async (t) => {
  const { approvals, home, setup } = await makePairedCase(t);
  const before = home.read(home.layout.accountFile);
  approvals.loseNextAnswer();
  assert.equal(await setup.code("enrollment.renew"), "saved_peer_renewal_retry");
  const between = home.read(home.layout.accountFile);
  assert.equal(between.token, before.token);
  assert.equal(typeof between.renewal.operation, "string");

  // The service has renewed already: the old credential no longer counts.
  assert.equal(await setup.code("enrollment.resume"), "saved_peer_lease_invalid");
  assert.equal(await setup.code("enrollment.renew"), "enrollment_paired");
  assert.equal(await setup.code("enrollment.resume"), "enrollment_paired");
});

test("a lost renewal can be repeated for sixty seconds, then the owner is asked", async (t) => {
  const outcomeAfter = async (milliseconds) => {
    const now = makeClock();
    const approvals = await serveApprovals(t, { now });
    const home = makeHome({ origin: kOrigin });
    const enrollment = makeEnrollment({ home, origin: approvals.origin, now });
    await enrollment.start(kStartValues);
    approvals.approveAll();
    await enrollment.poll();
    approvals.loseNextAnswer();
    assert.equal(await codeOf(enrollment.renew()), "saved_peer_renewal_retry");
    now.advance(milliseconds);
    const outcome = await codeOf(enrollment.renew());
    return { outcome, approvals, enrollment };
  };
  assert.equal((await outcomeAfter(60000)).outcome, "enrollment_paired");

  const late = await outcomeAfter(60001);
  assert.equal(late.outcome, "saved_peer_reapproval_required");
  const [{ peer, asksAgain }] = late.approvals.ledger.approvals();
  assert.equal(asksAgain, true);
  late.approvals.ledger.reapprove(peer);
  assert.equal(await codeOf(late.enrollment.renew()), "enrollment_paired");
  assert.equal(await codeOf(late.enrollment.resume()), "enrollment_paired");
});

test("a service that is away or silent makes a renewal retry the same operation", async (t) => {
  const approvals = await serveApprovals(t);
  const home = makeHome({ origin: kOrigin });
  const { origin } = approvals;
  const enrollment = makeEnrollment({ home, origin });
  await enrollment.start(kStartValues);
  approvals.approveAll();
  await enrollment.poll();

  approvals.holdAnswers();
  const impatient = makeEnrollment({ home, origin, answerLimit: 50 });
  assert.equal(await codeOf(impatient.renew()), "saved_peer_renewal_retry");
  const { operation } = home.read(home.layout.accountFile).renewal;
  approvals.close();
  assert.equal(await codeOf(enrollment.renew()), "saved_peer_renewal_retry");
  assert.equal(home.read(home.layout.accountFile).renewal.operation, operation);
  assert.equal(await codeOf(enrollment.resume()), "setup_failed");
});

test("a revoked approval needs the owner again, and keeps its credential until then", async (t) => {
  const { approvals, home, setup } = await makePairedCase(t);
  const { token } = home.read(home.layout.accountFile);
  const [{ peer }] = approvals.ledger.approvals();
  approvals.ledger.revoke(peer);
  assert.equal(await setup.code("enrollment.resume"), "saved_peer_lease_invalid");
  assert.equal(await setup.code("enrollment.renew"), "saved_peer_reapproval_required");
  assert.equal(home.read(home.layout.accountFile).token, token);
  approvals.ledger.reapprove(peer);
  assert.equal(await setup.code("enrollment.renew"), "enrollment_paired");
});
