import assert from "node:assert/strict";
import { Ledger, emptyState } from "../approval/ledger.mjs";
import { makeClock } from "./support/approval.mjs";
import { test } from "./support/test.mjs";

const kMinute = 60000;
const kLease = 1000 * kMinute;

const kRequest = Object.freeze({
  name: "Desktop DVR",
  server: "https://dvr.example.org:8443",
  installation: "one",
  recordingAccess: "private",
});

function makeLedger({ state = emptyState(), now = makeClock(), intervalMs = 5000 } = {}) {
  const saved = [];
  const save = (current) => saved.push(structuredClone(current));
  const ledger = new Ledger({ state, save, now, intervalMs, leaseMs: kLease, account: "owner" });
  return { ledger, now, saved, state };
}

function grant({ ledger, now }) {
  const { deviceCode, userCode } = ledger.begin(kRequest);
  assert.ok(ledger.decide(userCode, true));
  now.advance(5000);
  return { deviceCode, ...ledger.poll(deviceCode) };
}

test("a request is pending until the owner decides", () => {
  const { ledger, now } = makeLedger();
  const { deviceCode, userCode, intervalSeconds } = ledger.begin(kRequest);
  assert.equal(intervalSeconds, 5);
  now.advance(5000);
  assert.deepEqual(ledger.poll(deviceCode), { error: "authorization_pending" });
  assert.equal(ledger.decide(userCode, true), true);
  assert.deepEqual(ledger.pendingRequests(), []);
  const { token, ...facts } = ledger.poll(deviceCode);
  assert.deepEqual(ledger.inspect(token), { active: true, ...facts });
  assert.equal(facts.server, kRequest.server);
  assert.equal(facts.installation, kRequest.installation);
  assert.equal(facts.account, "owner");
  assert.equal(facts.leaseExpiresAt, now() + kLease);
});

test("each poll that comes too early costs five seconds", () => {
  const { ledger, now } = makeLedger();
  const { deviceCode } = ledger.begin(kRequest);
  now.advance(4999);
  assert.deepEqual(ledger.poll(deviceCode), { error: "slow_down" });
  now.advance(9999);
  assert.deepEqual(ledger.poll(deviceCode), { error: "slow_down" });
  now.advance(15000);
  assert.deepEqual(ledger.poll(deviceCode), { error: "authorization_pending" });
});

test("a refused, a lapsed and an unknown request are told apart", () => {
  const { ledger, now } = makeLedger();
  const refused = ledger.begin(kRequest);
  const lapsing = ledger.begin(kRequest);
  ledger.decide(refused.userCode, false);
  assert.deepEqual(ledger.poll(refused.deviceCode), { error: "access_denied" });
  now.advance(10 * kMinute);
  assert.deepEqual(ledger.poll(lapsing.deviceCode), { error: "expired_token" });
  assert.equal(ledger.decide(lapsing.userCode, true), false);
  assert.deepEqual(ledger.pendingRequests(), []);
  assert.deepEqual(ledger.poll("made up"), { error: "invalid_grant" });
});

test("a decision is made once", () => {
  const { ledger } = makeLedger();
  const { userCode } = ledger.begin(kRequest);
  assert.equal(ledger.decide(userCode, false), true);
  assert.equal(ledger.decide(userCode, true), false);
  assert.equal(ledger.decide("BCDF-0000", true), false);
  assert.deepEqual(ledger.approvals(), []);
});

test("a credential can be fetched again until it is first renewed", () => {
  const parts = makeLedger();
  const { deviceCode, token } = grant(parts);
  assert.equal(parts.ledger.poll(deviceCode).token, token);
  parts.ledger.renew(token, "first");
  assert.deepEqual(parts.ledger.poll(deviceCode), { error: "invalid_grant" });
});

test("a lease ends on time, and an ended one can be renewed", () => {
  const parts = makeLedger();
  const { token, leaseExpiresAt } = grant(parts);
  parts.now.advance(leaseExpiresAt - parts.now() - 1);
  assert.equal(parts.ledger.inspect(token).active, true);
  parts.now.advance(1);
  assert.deepEqual(parts.ledger.inspect(token), { active: false });
  const renewed = parts.ledger.renew(token, "later");
  assert.equal(renewed.leaseExpiresAt, parts.now() + kLease);
  assert.equal(parts.ledger.inspect(renewed.token).active, true);
  assert.deepEqual(parts.ledger.inspect(token), { active: false });
});

test("the same operation gives the same credential for sixty seconds", () => {
  const parts = makeLedger();
  const { token } = grant(parts);
  const first = parts.ledger.renew(token, "operation");
  parts.now.advance(kMinute);
  assert.deepEqual(parts.ledger.renew(token, "operation"), first);
  assert.deepEqual(parts.ledger.renew(first.token, "operation"), first);
  parts.now.advance(1);
  assert.deepEqual(parts.ledger.renew(token, "operation"), { error: "reapproval_required" });
  assert.equal(parts.ledger.inspect(first.token).active, true);
});

test("an old credential with a new operation needs the owner", () => {
  const parts = makeLedger();
  const { token, peer } = grant(parts);
  parts.ledger.renew(token, "first");
  assert.deepEqual(parts.ledger.renew(token, "second"), { error: "reapproval_required" });
  assert.equal(parts.ledger.approvals()[0].asksAgain, true);
  assert.equal(parts.ledger.reapprove(peer), true);
  const renewed = parts.ledger.renew(token, "third");
  assert.equal(parts.ledger.inspect(renewed.token).active, true);
  assert.deepEqual(parts.ledger.renew(token, "fourth"), { error: "reapproval_required" });
});

test("a revoked approval is neither good nor renewable, not even by a repeated operation", () => {
  const parts = makeLedger();
  const { token, peer } = grant(parts);
  const renewed = parts.ledger.renew(token, "first");
  parts.ledger.revoke(peer);
  assert.deepEqual(parts.ledger.inspect(renewed.token), { active: false });
  assert.deepEqual(parts.ledger.renew(token, "first"), { error: "reapproval_required" });
  assert.deepEqual(parts.ledger.renew(renewed.token, "second"), { error: "reapproval_required" });
  parts.ledger.reapprove(peer);
  const again = parts.ledger.renew(renewed.token, "second");
  assert.equal(parts.ledger.inspect(again.token).active, true);
});

test("an unknown credential learns nothing", () => {
  const { ledger } = makeLedger();
  assert.deepEqual(ledger.inspect("made up"), { active: false });
  assert.deepEqual(ledger.renew("made up", "operation"), { error: "reapproval_required" });
  assert.equal(ledger.revoke("nobody"), false);
  assert.equal(ledger.reapprove("nobody"), false);
});

test("what was saved is enough to go on from, and holds no usable secret", () => {
  const parts = makeLedger();
  const { deviceCode, token } = grant(parts);
  const waiting = parts.ledger.begin(kRequest);
  const state = parts.saved.at(-1);
  for (const secret of [deviceCode, token, waiting.deviceCode]) {
    assert.equal(JSON.stringify(state).includes(secret), false);
  }
  const later = makeLedger({ state, now: parts.now });
  assert.equal(later.ledger.inspect(token).active, true);
  assert.equal(later.ledger.poll(deviceCode).token, token);
  assert.equal(later.ledger.pendingRequests()[0].userCode, waiting.userCode);
});

test("open requests are limited in number and make room when they lapse", () => {
  const { ledger, now } = makeLedger();
  const codes = new Set();
  for (let count = 0; count < 50; count += 1) codes.add(ledger.begin(kRequest).userCode);
  assert.equal(codes.size, 50);
  assert.deepEqual(ledger.begin(kRequest), { error: "temporarily_unavailable" });
  now.advance(10 * kMinute);
  assert.match(ledger.begin(kRequest).userCode, /^[A-Z]{4}-[0-9]{4}$/);
});
