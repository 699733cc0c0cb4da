import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import fs from "node:fs";
import { isPassword, isUsername, verifyLogin, writeLogin } from "../desktop/lib/login.mjs";
import { makeClock } from "./support/approval.mjs";
import { makeCase, makePairedCase } from "./support/enrollment.mjs";
import { snapshotOf } from "./support/recorder.mjs";
import { SetupScript, makeHome } from "./support/setup.mjs";
import { test } from "./support/test.mjs";

const kPassword = "a password nobody else would choose 4711";
// For what does not depend on how hard guessing is made.
const kLittleEffort = Object.freeze({ cost: 1024, blockSize: 8, parallelization: 1 });

const kLogin = Object.freeze({ username: "viewer", password: kPassword, trustLocalProxy: true });

test("the login is kept as a salted hash that opens for it alone", async (t) => {
  const { home, setup } = await makePairedCase(t);
  const reply = await setup.request("password.configure", kLogin);
  assert.deepEqual(reply, { ok: true, code: "login_configured" });

  const stored = home.read(home.layout.loginFile);
  assert.equal(stored.username, "viewer");
  assert.equal(stored.trustLocalProxy, true);
  assert.equal(fs.statSync(home.layout.loginFile).mode & 0o777, 0o600);
  assert.equal(stored.scrypt.cost, 2 ** 17);
  assert.equal(await verifyLogin(home.layout, kLogin), true);
  assert.equal(await verifyLogin(home.layout, { ...kLogin, password: `${kPassword} ` }), false);
});

test("only user name and password together open the recorder", async () => {
  const { layout } = makeHome();
  await writeLogin(layout, kLogin, kLittleEffort);
  const opens = (username, password) => verifyLogin(layout, { username, password });
  assert.equal(await opens("viewer", kPassword), true);
  assert.equal(await opens("viewer", ""), false);
  assert.equal(await opens("viewer", kPassword.toUpperCase()), false);
  assert.equal(await opens("Viewer", kPassword), false);
  assert.equal(await opens("", kPassword), false);
});

test("the password is nowhere but in the hash", async (t) => {
  const { home, setup } = await makePairedCase(t);
  const replies = [await setup.request("password.configure", kLogin)];
  replies.push(await setup.request("password.configure", kLogin));
  const misplaced = { ...kLogin, username: kPassword, trustLocalProxy: kPassword };
  replies.push(await setup.request("password.configure", misplaced));

  const hidden = [kPassword, Buffer.from(kPassword).toString("base64").slice(0, -4)];
  hidden.push(Buffer.from(kPassword).toString("hex"));
  const isFoundIn = (text) => hidden.some((spelling) => text.includes(spelling));
  for (const folder of [home.layout.home, home.storage]) {
    for (const [file, content] of snapshotOf(folder)) {
      assert.ok(!isFoundIn(Buffer.from(content, "base64").toString("latin1")), file);
    }
  }
  assert.ok(!isFoundIn(execFileSync("ps", ["-A", "-ww", "-o", "args="], { encoding: "utf8" })));
  assert.ok(!isFoundIn(environmentOf(setup.pid)));
  assert.ok(!isFoundIn(JSON.stringify(replies) + setup.complaints));
});

/** The environment of a process as the system shows it. */
function environmentOf(pid) {
  if (process.platform === "linux") return fs.readFileSync(`/proc/${pid}/environ`, "latin1");
  return execFileSync("ps", ["-E", "-ww", "-o", "command=", "-p", `${pid}`], { encoding: "utf8" });
}

test("two logins of the same password look different", async () => {
  const { layout, read } = makeHome();
  await writeLogin(layout, kLogin, kLittleEffort);
  const first = read(layout.loginFile).scrypt;
  await writeLogin(layout, kLogin, kLittleEffort);
  const second = read(layout.loginFile).scrypt;
  assert.notEqual(first.salt, second.salt);
  assert.notEqual(first.hash, second.hash);
});

test("a password typed in another normal form is the same password", async () => {
  const { layout } = makeHome();
  const spelled = (form) => ({
    username: "käthe".normalize(form),
    password: "é".repeat(9).normalize(form),
  });
  await writeLogin(layout, { ...spelled("NFD"), trustLocalProxy: true }, kLittleEffort);
  assert.equal(await verifyLogin(layout, spelled("NFC")), true);
});

test("no login without a file, or from one that others may read", async () => {
  const { layout } = makeHome();
  assert.equal(await verifyLogin(layout, kLogin), false);
  await writeLogin(layout, kLogin, kLittleEffort);
  fs.chmodSync(layout.loginFile, 0o640);
  assert.equal(await verifyLogin(layout, kLogin), false);
});

test("an existing login is preserved", async (t) => {
  const { home, setup } = await makePairedCase(t);
  assert.equal(await setup.code("password.configure", kLogin), "login_configured");
  const before = snapshotOf(home.layout.configFolder);
  const other = { ...kLogin, username: "other", password: "another long password" };
  assert.equal(await setup.code("password.configure", other), "existing_login_requires_dashboard");
  assert.deepEqual(snapshotOf(home.layout.configFolder), before);
  fs.writeFileSync(home.layout.loginFile, "{");
  assert.equal(await setup.code("password.configure", other), "existing_login_requires_dashboard");
  assert.equal(fs.readFileSync(home.layout.loginFile, "utf8"), "{");
});

test("a login needs an approval that is valid right now", async (t) => {
  const unpaired = await makeCase(t);
  const outcomeOf = ({ setup }) => setup.code("password.configure", kLogin);
  assert.equal(await outcomeOf(unpaired), "saved_peer_missing");

  const now = makeClock(Date.now() - 1000000000);
  const expired = await makePairedCase(t, { now });
  assert.equal(await outcomeOf(expired), "saved_peer_lease_invalid");

  const revoked = await makePairedCase(t);
  revoked.approvals.ledger.revoke(revoked.approvals.ledger.approvals()[0].peer);
  assert.equal(await outcomeOf(revoked), "saved_peer_lease_invalid");

  const moved = await makePairedCase(t);
  moved.home.editSettings({ DVR_PUBLIC_ORIGIN: "https://moved.example.org:8443" });
  assert.equal(await outcomeOf(moved), "saved_peer_scope_mismatch");

  for (const { home } of [unpaired, expired, revoked, moved]) {
    assert.equal(fs.existsSync(home.layout.loginFile), false);
  }
});

test("an approval that an earlier script saved is enough", async (t) => {
  const { home, setup } = await makePairedCase(t);
  await setup.finish();
  const later = new SetupScript(t, home.layout.home);
  assert.equal(await later.code("password.configure", kLogin), "login_configured");
});

test("user name, password and consent are checked again", async (t) => {
  const { home, setup } = await makePairedCase(t);
  const bad = [
    { password: "x".repeat(14) },
    { password: "x".repeat(129) },
    { password: "€".repeat(43) },
    { password: `${"x".repeat(20)}\u0000` },
    { password: `${"x".repeat(20)}\n` },
    { password: `${"x".repeat(20)}\ud800` },
    { password: 123456789012345 },
    { password: ["x".repeat(20)] },
    { password: null },
    { username: "" },
    { username: " viewer" },
    { username: "two words" },
    { username: "x".repeat(65) },
    { username: "-viewer" },
    { username: "view\u0000er" },
    { username: "../login" },
    { username: { toString: "viewer" } },
    { trustLocalProxy: false },
    { trustLocalProxy: "true" },
    { trustLocalProxy: 1 },
    { trustLocalProxy: undefined },
  ];
  for (const change of bad) {
    const values = { ...kLogin, ...change };
    const outcome = await setup.code("password.configure", values);
    assert.equal(outcome, "setup_failed", JSON.stringify(change));
  }
  assert.equal(fs.existsSync(home.layout.loginFile), false);
});

test("passwords are measured in bytes, user names in characters", () => {
  assert.ok(isPassword("x".repeat(15)));
  assert.ok(isPassword("x".repeat(128)));
  assert.ok(isPassword("\u00e9".repeat(8)));
  assert.ok(!isPassword("\u00e9".repeat(7)));
  assert.ok(isUsername("x"));
  assert.ok(isUsername("käthe.müller@example.org"));
  assert.ok(isUsername("é".normalize("NFD")));
  assert.ok(isUsername("x".repeat(64)));
});
