// The setup window's first half: a certificate for the gateway, and the gateway that serves with
// it.

import assert from "node:assert/strict";
import fs from "node:fs";
import { makeCertificates } from "../certificates.mjs";
import { fetchSecurely } from "../network.mjs";
import { kSettings, kSetup } from "../program.mjs";
import { assertNoPasswordInProcesses } from "./secrets.mjs";
import { startService, stopService } from "./service.mjs";
import { expectLockedMenu } from "./window.mjs";

const kCertificate = "Certificate chain (PEM)";
const kKey = "Private key (PEM)";
const kCA = "Optional local CA (PEM)";
const kTrustCA = "I trust the selected local CA";
const kOpening = "DVR stays stopped during setup.";

export async function setUpTls(tour) {
  const { display, host, journal, origin, program, scratch, step } = tour;
  const { authority, good, elsewhere } = makeCertificates(scratch.path("certificates"), host);
  tour.authority = authority;
  tour.certificate = good;
  const validate = (expected) =>
    program.bringing(expected, kSetup, () => program.press("Validate TLS", kSetup));

  await step("TLS / Account", async () => {
    await openSetup(program);
    const window = (await program.look()).window(kSetup);
    assert.ok(window.texts().includes(origin));
    assert.equal(window.controls().length, 17); // the sixteen that get locked, and Manage Account
    assertEmpty(window);
    await expectLockedMenu(program);
    return window.sentence();
  });

  await step("Quit during setup", async () => {
    const said = await program.bringing(
      "Wait for the current action before quitting.",
      kSettings,
      () => program.choose("Quit Desktop App"),
    );
    display.photograph(journal.file("refused"));
    await program.raise(kSetup);
    return said;
  });

  await step("Validate TLS: a private key that others can read", async () => {
    await program.type(kCertificate, good.certificate, kSetup);
    await program.type(kKey, good.key, kSetup);
    fs.chmodSync(good.key, 0o644);
    return validate("Private key must be owned by this account with mode 0600.");
  });

  await step("Validate TLS: an authority that was not approved", async () => {
    fs.chmodSync(good.key, 0o600);
    await program.type(kCA, authority.certificate, kSetup);
    return validate(
      "Certificate issuer is not trusted. Supply a valid chain or explicitly approved local CA.",
    );
  });

  await step("Validate TLS: a certificate for another host", async () => {
    await program.tick(kTrustCA, true);
    await program.type(kCertificate, elsewhere.certificate, kSetup);
    await program.type(kKey, elsewhere.key, kSetup);
    return validate("Certificate does not cover the configured server address.");
  });

  await step("Validate TLS: a key of another certificate", async () => {
    await program.type(kCertificate, good.certificate, kSetup);
    return validate("Certificate and private key do not match.");
  });

  await step("Validate TLS: a good chain and an approved authority", async () => {
    await program.type(kKey, good.key, kSetup);
    return validate(
      "Certificate validated; gateway stays stopped. Client devices must also trust its issuer.",
    );
  });

  await step("Validate TLS once more", () =>
    validate("Existing TLS settings preserved. Use a reviewed certificate replacement."),
  );
}

export async function openSetup(program) {
  await program.press("TLS / Account");
  await program.expectShown(kSetup);
  assert.equal(await program.sentence(kSetup), kOpening);
}

/** Nothing is filled in and nothing agreed to. */
export function assertEmpty(window) {
  for (const { kind, text, on } of window.controls()) {
    if (kind === "field" || kind === "secureField") assert.equal(text, "");
    if (kind === "checkBox") assert.equal(on, false);
  }
}

export async function serveOverTls(tour) {
  const { authority, certificate, origin, program, step } = tour;
  const trusted = fs.readFileSync(authority.certificate);

  await step("Start DVR with its gateway", async () => {
    const said = await startService(program);
    const page = await fetchSecurely(`${origin}/dashboard`, trusted);
    assert.equal(page.status, 200);
    assert.ok(page.body.includes("<h1>Dashboard</h1>"));
    assert.equal(page.certificate, fs.readFileSync(certificate.certificate, "utf8"));
    // Nobody who does not trust the authority gets that far.
    await assert.rejects(fetchSecurely(`${origin}/dashboard`), {
      code: "UNABLE_TO_VERIFY_LEAF_SIGNATURE",
    });
    assertNoPasswordInProcesses(tour.passwords);
    return said;
  });

  await step("Stop DVR with its gateway", async () => {
    const said = await stopService(program);
    await assert.rejects(fetchSecurely(`${origin}/dashboard`, trusted), { code: "ECONNREFUSED" });
    return said;
  });
}
