import assert from "node:assert/strict";
import fs from "node:fs";
import https from "node:https";
import test from "node:test";
import { isRunning, readRecord } from "../desktop/lib/processes.mjs";
import { writeTlsConfiguration } from "../desktop/lib/tls-configuration.mjs";
import { stageBundle } from "./support/bundle.mjs";
import { makeAuthority, makeServerCertificate } from "./support/certificates.mjs";
import {
  eventually,
  freePort,
  listenSomewhere,
  Recorder,
  startStranger,
} from "./support/recorder.mjs";

const bundle = stageBundle({ version: "1.0.0" });
const authority = makeAuthority();
const certificate = makeServerCertificate({ issuer: authority });
const expired = makeServerCertificate({ issuer: authority, days: -1 });
const otherHost = makeServerCertificate({ issuer: authority, hosts: ["DNS:other.example.org"] });

const kStarted = { ok: true, code: "started" };
const kStopped = { ok: true, code: "stopped" };
const refusal = (code) => ({ ok: false, code });

/** An installation with TLS set up for `material` on port `port`. */
async function installedWithTls(t, { material = certificate, approvedCA, port } = {}) {
  const recorder = await Recorder.installed(t, bundle);
  const httpsPort = port ?? (await freePort());
  recorder.editSettings({ DVR_PUBLIC_ORIGIN: `https://dvr.example.org:${httpsPort}` });
  writeTlsConfiguration(recorder.layout, {
    certificates: [material.certificate],
    privateKey: material.key,
    approvedCA: approvedCA === undefined ? authority.certificate : approvedCA,
    host: "dvr.example.org",
    port: httpsPort,
  });
  return recorder;
}

const gatewayOf = ({ layout }) => readRecord(layout.gatewayPidFile);

function getSecurePage({ settings }, page) {
  const { port } = new URL(settings.DVR_PUBLIC_ORIGIN);
  const address = { host: "127.0.0.1", port, path: page, agent: false };
  const trust = { ca: authority.certificate, servername: "dvr.example.org" };
  return new Promise((resolve, reject) => {
    https.get({ ...address, ...trust }, (response) => {
      response.resume().on("end", () => resolve(response.statusCode));
    }).on("error", reject);
  });
}

async function expectNothingRuns(recorder) {
  assert.equal(recorder.server, null);
  assert.equal(gatewayOf(recorder), null);
  assert.deepEqual(await recorder.service("status"), kStopped);
}

test("a configured gateway starts, serves and stops with the server", async (t) => {
  const recorder = await installedWithTls(t);
  assert.deepEqual(await recorder.service("start"), kStarted);
  assert.deepEqual(await recorder.service("start"), { ok: true, code: "running" });
  assert.deepEqual(await recorder.service("status"), { ok: true, code: "running" });
  assert.equal(await getSecurePage(recorder, "/recordings"), 200);
  assert.equal((await recorder.controller("overview")).ok, true);

  const processes = [recorder.server, gatewayOf(recorder)];
  assert.deepEqual(await recorder.service("stop"), kStopped);
  assert.deepEqual(processes.map(isRunning), [false, false]);
  await expectNothingRuns(recorder);
});

test("an HTTPS port that somebody else listens on stays theirs; nothing starts", async (t) => {
  const { server, port } = await listenSomewhere(t);
  const recorder = await installedWithTls(t, { port });
  assert.deepEqual(await recorder.service("start"), refusal("gateway_port_unavailable"));
  assert.equal(server.listening, true);
  await expectNothingRuns(recorder);
});

test("a gateway that was killed is reported, and comes back without a new server", async (t) => {
  const recorder = await installedWithTls(t);
  await recorder.service("start");
  const { server } = recorder;
  const gateway = gatewayOf(recorder);
  process.kill(gateway.pid, "SIGKILL");
  await eventually(() => !isRunning(gateway));
  assert.deepEqual(await recorder.service("status"), refusal("gateway_unhealthy"));
  assert.deepEqual(await recorder.controller("overview"), refusal("gateway_unhealthy"));
  assert.deepEqual(await recorder.service("start"), kStarted);
  assert.deepEqual(recorder.server, server);
  assert.notEqual(gatewayOf(recorder).pid, gateway.pid);
});

test("a gateway that cannot come back does not take the server with it", async (t) => {
  const recorder = await installedWithTls(t);
  await recorder.service("start");
  const { server } = recorder;
  const gateway = gatewayOf(recorder);
  process.kill(gateway.pid, "SIGKILL");
  await eventually(() => !isRunning(gateway));
  fs.rmSync(recorder.layout.tlsCertificateFile);
  assert.deepEqual(await recorder.service("start"), refusal("gateway_configuration_invalid"));
  assert.equal(isRunning(server), true);
});

test("a gateway left without its server is no running recorder, and stops", async (t) => {
  const recorder = await installedWithTls(t);
  await recorder.service("start");
  const { server } = recorder;
  const gateway = gatewayOf(recorder);
  process.kill(server.pid, "SIGTERM");
  await eventually(() => !isRunning(server));
  assert.deepEqual(await recorder.service("status"), refusal("stopped_or_unhealthy"));
  assert.deepEqual(await recorder.update("upgrade"), refusal("stop_services_first"));
  assert.deepEqual(await recorder.service("stop"), kStopped);
  assert.equal(isRunning(gateway), false);
});

test("a process that got the gateway's old id is neither believed nor touched", async (t) => {
  const recorder = await installedWithTls(t);
  const stranger = await startStranger(t);
  const record = { pid: stranger.pid, startTime: "another time", port: 1 };
  fs.writeFileSync(recorder.layout.gatewayPidFile, JSON.stringify(record));
  assert.deepEqual(await recorder.service("start"), kStarted);
  assert.deepEqual(await recorder.service("stop"), kStopped);
  assert.equal(isRunning(stranger), true);
});

test("a configuration that cannot be served with starts nothing", async (t) => {
  const faults = {
    "an issuer that nobody approved": { approvedCA: null },
    "a certificate for another host": { material: otherHost },
    "a key that is another certificate's": { material: { ...certificate, key: otherHost.key } },
  };
  for (const [name, options] of Object.entries(faults)) {
    await t.test(name, async (t) => {
      const recorder = await installedWithTls(t, options);
      assert.deepEqual(await recorder.service("start"), refusal("gateway_configuration_invalid"));
      await expectNothingRuns(recorder);
    });
  }
});

test("files of the configuration that are damaged start nothing", async (t) => {
  const faults = {
    "configuration readable by others": ({ tlsFile }) => fs.chmodSync(tlsFile, 0o644),
    "configuration not JSON": ({ tlsFile }) => fs.writeFileSync(tlsFile, "{"),
    "key readable by others": ({ tlsKeyFile }) => fs.chmodSync(tlsKeyFile, 0o640),
    "key missing": ({ tlsKeyFile }) => fs.rmSync(tlsKeyFile),
    "certificate missing": ({ tlsCertificateFile }) => fs.rmSync(tlsCertificateFile),
    "gateway program missing": ({ gatewayFile }) => fs.rmSync(gatewayFile),
  };
  for (const [name, cause] of Object.entries(faults)) {
    await t.test(name, async (t) => {
      const recorder = await installedWithTls(t);
      cause(recorder.layout);
      assert.deepEqual(await recorder.service("start"), refusal("gateway_configuration_invalid"));
      await expectNothingRuns(recorder);
    });
  }
});

test("an expired certificate is not a healthy gateway", async (t) => {
  const recorder = await installedWithTls(t, { material: expired });
  assert.deepEqual(await recorder.service("start"), refusal("gateway_unhealthy"));
  await expectNothingRuns(recorder);
});

test("the check judges the gateway's files and its certificate", async (t) => {
  const recorder = await installedWithTls(t);
  assert.deepEqual(await recorder.controller("check"), { ok: true, code: "checked" });
  fs.chmodSync(recorder.layout.tlsKeyFile, 0o644);
  assert.deepEqual(await recorder.controller("check"), refusal("gateway_configuration_invalid"));
  for (const [material, code] of [
    [otherHost, "gateway_configuration_invalid"],
    [expired, "gateway_unhealthy"],
  ]) {
    const recorder = await installedWithTls(t, { material });
    assert.deepEqual(await recorder.controller("check"), refusal(code));
  }
});
