import assert from "node:assert/strict";
import fs from "node:fs";
import https from "node:https";
import path from "node:path";
import { verifyLogin } from "../desktop/lib/login.mjs";
import { serveApprovals } from "./support/approval.mjs";
import { stageBundle, temporaryFolder } from "./support/bundle.mjs";
import { makeAuthority, makeServerCertificate } from "./support/certificates.mjs";
import { Recorder, freePort, snapshotOf } from "./support/recorder.mjs";
import { SetupScript, kStartValues } from "./support/setup.mjs";
import { test } from "./support/test.mjs";

const authority = makeAuthority();
const certificate = makeServerCertificate({ issuer: authority });

function writePem(text) {
  const file = path.join(temporaryFolder(), "file.pem");
  fs.writeFileSync(file, text, { mode: 0o600 });
  return file;
}

function getSecureStatus(port, page) {
  const address = { host: "127.0.0.1", port, path: page, agent: false };
  const trust = { ca: authority.certificate, servername: "dvr.example.org" };
  return new Promise((resolve, reject) => {
    const request = https.get({ ...address, ...trust }, (response) => {
      response.resume().on("end", () => resolve(response.statusCode));
    });
    request.on("error", reject);
  });
}

test("what setup leaves behind starts, serves, and survives an update", async (t) => {
  const approvals = await serveApprovals(t);
  const recorder = await Recorder.installed(t, stageBundle());
  const { layout } = recorder;
  const port = await freePort();
  const origin = `https://dvr.example.org:${port}`;
  recorder.editSettings({ DVR_PUBLIC_ORIGIN: origin, DVR_APPROVAL_ORIGIN: approvals.origin });

  const script = path.join(recorder.resources, "desktop", "first-run.mjs");
  const setup = new SetupScript(t, layout.home, { script });
  const tlsValues = {
    origin,
    certificateFile: writePem(certificate.certificate),
    keyFile: writePem(certificate.key),
    approveLocalCA: true,
    approvedCAFile: writePem(authority.certificate),
  };
  const login = {
    username: "viewer",
    password: "correct horse battery staple",
    trustLocalProxy: true,
  };
  assert.equal(await setup.code("tls.configure", tlsValues), "tls_configured_stopped");
  assert.equal(await setup.code("enrollment.start", kStartValues), "enrollment_pending");
  approvals.approveAll();
  assert.equal(await setup.code("enrollment.poll"), "enrollment_paired");
  assert.equal(await setup.code("password.configure", login), "login_configured");
  await setup.finish();
  assert.deepEqual(await recorder.service("status"), { ok: true, code: "stopped" });

  const before = snapshotOf(layout.configFolder);
  assert.equal((await recorder.update("upgrade")).code, "updated_stopped");
  assert.deepEqual(snapshotOf(layout.configFolder), before);

  assert.deepEqual(await recorder.service("start"), { ok: true, code: "started" });
  assert.equal(await getSecureStatus(port, "/recordings"), 200);
  assert.equal(await getSecureStatus(port, "/gateway-health"), 200);
  assert.equal(await verifyLogin(layout, login), true);

  // Setup while it runs keeps out of its way.
  const later = new SetupScript(t, layout.home, { script });
  assert.equal(await later.code("tls.configure", tlsValues), "existing_tls_configuration");
  assert.equal(await later.code("enrollment.renew"), "enrollment_paired");
  assert.deepEqual(await recorder.service("status"), { ok: true, code: "running" });
  assert.deepEqual(await recorder.service("stop"), { ok: true, code: "stopped" });
});
