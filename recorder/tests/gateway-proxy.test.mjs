import assert from "node:assert/strict";
import { spawn } from "node:child_process";
import { once } from "node:events";
import fs from "node:fs";
import http from "node:http";
import https from "node:https";
import tls from "node:tls";
import { fileURLToPath } from "node:url";
import { readRecord } from "../desktop/lib/processes.mjs";
import { writeTlsConfiguration } from "../desktop/lib/tls-configuration.mjs";
import { otherAddresses } from "./support/addresses.mjs";
import { makeAuthority, makeServerCertificate } from "./support/certificates.mjs";
import { eventually, freePort, listenSomewhere } from "./support/recorder.mjs";
import { kInstallationId, kSetupEnvironment, makeHome } from "./support/setup.mjs";
import { test } from "./support/test.mjs";

const kGateway = fileURLToPath(new URL("../server/gateway.mjs", import.meta.url));
const kHost = "dvr.example.org";

const authority = makeAuthority();
const certificate = makeServerCertificate({ issuer: authority });

/** A server of the test's own in the recorder's place: { port, server }. */
async function serveBackend(t, answer) {
  const server = http.createServer(answer);
  server.listen(0, "127.0.0.1");
  await once(server, "listening");
  t.after(() => {
    server.close();
    server.closeAllConnections();
  });
  return { server, port: server.address().port };
}

/** A home with TLS set up in front of `backendPort`. */
async function makeConfiguredHome({ backendPort, port, material = certificate, ...changes } = {}) {
  const httpsPort = port ?? (await freePort());
  const origin = `https://${kHost}:${httpsPort}`;
  const home = makeHome({ origin, DVR_PORT: backendPort ?? (await freePort()) });
  writeTlsConfiguration(home.layout, {
    certificates: [material.certificate],
    privateKey: material.key,
    approvedCA: authority.certificate,
    host: kHost,
    port: httpsPort,
    ...changes,
  });
  return { ...home, port: httpsPort };
}

function launch(t, { layout }) {
  const child = spawn(process.execPath, [kGateway, "--home", layout.home], {
    env: kSetupEnvironment,
    stdio: "ignore",
  });
  const ended = once(child, "exit").then(([status]) => status);
  t.after(async () => {
    child.kill("SIGKILL");
    await ended;
  });
  return { child, ended };
}

/** A serving gateway in front of a server that answers with `answer`. */
async function serveGateway(t, answer = (request, response) => response.end("hello")) {
  const backend = await serveBackend(t, answer);
  const home = await makeConfiguredHome({ backendPort: backend.port });
  const gateway = launch(t, home);
  await eventually(() => readRecord(home.layout.gatewayPidFile) !== null, "the gateway serves");
  const address = {
    host: "127.0.0.1",
    port: home.port,
    servername: kHost,
    ca: authority.certificate,
    agent: false,
  };
  return { ...home, ...gateway, backend, address };
}

/** { status, headers, body } of one request through the gateway. */
async function fetchPage(address, page = "/", { body, ...options } = {}) {
  const request = https.request({ ...address, path: page, ...options });
  request.end(body);
  const [response] = await once(request, "response");
  const chunks = [];
  for await (const chunk of response) chunks.push(chunk);
  const { statusCode: status, headers } = response;
  return { status, headers, body: Buffer.concat(chunks).toString() };
}

test("every request reaches the server and every answer the visitor", async (t) => {
  const { address } = await serveGateway(t, async (request, response) => {
    const chunks = [];
    for await (const chunk of request) chunks.push(chunk);
    const seen = { method: request.method, url: request.url, headers: request.headers };
    response.writeHead(203, { "Set-Cookie": ["a=1", "b=2"], "X-Kept": "yes" });
    response.end(JSON.stringify({ ...seen, body: Buffer.concat(chunks).toString() }));
  });
  for (const method of ["GET", "POST", "PUT", "DELETE", "PATCH", "OPTIONS"]) {
    const body = method === "GET" ? undefined : `a body for ${method}`;
    const headers = { "X-Own": "value", ...(body ? { "Content-Length": body.length } : {}) };
    const answer = await fetchPage(address, "/a%20b?c=d", { method, body, headers });
    assert.equal(answer.status, 203);
    assert.deepEqual(answer.headers["set-cookie"], ["a=1", "b=2"]);
    assert.equal(answer.headers["x-kept"], "yes");
    const seen = JSON.parse(answer.body);
    assert.deepEqual([seen.method, seen.url, seen.body], [method, "/a%20b?c=d", body ?? ""]);
    assert.equal(seen.headers["x-own"], "value");
  }
  assert.equal((await fetchPage(address, "/", { method: "HEAD" })).body, "");
});

test("the server learns who asked and how, and no visitor can make that up", async (t) => {
  const { address, port } = await serveGateway(t, (request, response) => {
    response.end(JSON.stringify(request.headers));
  });
  const headers = {
    Host: `${kHost}:${port}`,
    Forwarded: "for=192.0.2.1",
    "X-Forwarded-For": "192.0.2.1",
    "X-Forwarded-Proto": "http",
    "X-Forwarded-Host": "elsewhere.example.org",
    Connection: "X-Secret, keep-alive",
    "X-Secret": "for this connection only",
  };
  const seen = JSON.parse((await fetchPage(address, "/", { headers })).body);
  assert.equal(seen.host, `${kHost}:${port}`);
  assert.equal(seen["x-forwarded-for"], "127.0.0.1");
  assert.equal(seen["x-forwarded-proto"], "https");
  assert.equal(seen["x-forwarded-host"], `${kHost}:${port}`);
  assert.equal(seen.forwarded, undefined);
  assert.equal(seen["x-secret"], undefined);
});

test("large bodies stream through unharmed in both directions", async (t) => {
  const { address } = await serveGateway(t, (request, response) => request.pipe(response));
  const body = "0123456789abcdef".repeat(256 * 1024);
  const answer = await fetchPage(address, "/", { method: "POST", body });
  assert.ok(answer.body === body);
});

test("a body of unannounced length is never taken for a second request", async (t) => {
  const urls = [];
  const { address } = await serveGateway(t, (request, response) => {
    urls.push(request.url);
    request.pipe(response);
  });
  const smuggled = "GET /smuggled HTTP/1.1\r\nHost: x\r\n\r\n";
  for (const method of ["GET", "DELETE", "POST"]) {
    const headers = { "Transfer-Encoding": "chunked" };
    const answer = await fetchPage(address, `/${method}`, { method, headers, body: smuggled });
    assert.equal(answer.body, smuggled);
  }
  assert.deepEqual(urls, ["/GET", "/DELETE", "/POST"]);
});

test("an answer that is cut off looks cut off", async (t) => {
  const { address } = await serveGateway(t, (request, response) => {
    response.writeHead(200, { "Content-Length": 1000 });
    response.write("only this", () => response.destroy());
  });
  await assert.rejects(fetchPage(address), { code: "ECONNRESET" });
});

test("a visitor who leaves is not served any longer", async (t) => {
  let asked;
  const request = new Promise((resolve) => (asked = resolve));
  const { address } = await serveGateway(t, (...pair) => asked(pair));
  const visit = https.get(address);
  visit.on("error", () => {});
  const [, response] = await request;
  const closed = once(response, "close");
  visit.destroy();
  await closed;
});

test("a connection can be upgraded and carries bytes both ways", async (t) => {
  const { address, backend, child, ended } = await serveGateway(t);
  backend.server.on("upgrade", (request, socket) => {
    assert.equal(request.headers["x-forwarded-proto"], "https");
    socket.write("HTTP/1.1 101 Switching Protocols\r\n");
    socket.write("Connection: Upgrade\r\nUpgrade: echo\r\n\r\n");
    socket.pipe(socket);
  });
  const headers = { Connection: "Upgrade", Upgrade: "echo" };
  const request = https.get({ ...address, headers });
  const [response, socket] = await once(request, "upgrade");
  assert.equal(response.headers.upgrade, "echo");
  socket.write("there and back");
  const [echo] = await once(socket, "data");
  assert.equal(echo.toString(), "there and back");

  // Open connections do not keep a gateway that is asked to end.
  socket.on("error", () => {});
  child.kill("SIGTERM");
  assert.equal(await ended, 0);
});

test("an upgrade that the server does not want is refused", async (t) => {
  const { address } = await serveGateway(t);
  const headers = { Connection: "Upgrade", Upgrade: "echo" };
  assert.equal((await fetchPage(address, "/", { headers })).status, 502);
});

test("without its server the gateway says so and stays", async (t) => {
  const { address, backend } = await serveGateway(t);
  backend.server.close();
  backend.server.closeAllConnections();
  assert.equal((await fetchPage(address)).status, 502);
  assert.equal((await fetchPage(address, "/gateway-health")).status, 200);
});

test("its health names the installation and the process, and asks nobody", async (t) => {
  let asked = 0;
  const { address, child } = await serveGateway(t, (request, response) => {
    asked += 1;
    response.end();
  });
  const { status, headers, body } = await fetchPage(address, "/gateway-health?now");
  assert.equal(status, 200);
  assert.equal(headers["content-type"], "application/json");
  assert.deepEqual(JSON.parse(body), { installationId: kInstallationId, pid: child.pid });
  assert.equal(asked, 0);
});

test("TLS before 1.2 is refused, 1.2 and 1.3 are spoken", async (t) => {
  const { address } = await serveGateway(t);
  const speak = async (version) => {
    const versions = { minVersion: version, maxVersion: version };
    // Without this our own side would refuse the old versions first.
    const socket = tls.connect({ ...address, ...versions, ciphers: "DEFAULT@SECLEVEL=0" });
    await once(socket, "secureConnect");
    const protocol = socket.getProtocol();
    socket.destroy();
    return protocol;
  };
  assert.equal(await speak("TLSv1.2"), "TLSv1.2");
  assert.equal(await speak("TLSv1.3"), "TLSv1.3");
  await assert.rejects(speak("TLSv1.1"), { code: /ALERT_PROTOCOL_VERSION/ });
  await assert.rejects(speak("TLSv1"), { code: /ALERT_PROTOCOL_VERSION/ });
});

test("it listens to this computer only, and does not speak plain HTTP", async (t) => {
  const { port } = await serveGateway(t);
  for (const host of otherAddresses()) {
    const [error] = await once(http.get({ host, port }), "error");
    assert.equal(error.code, "ECONNREFUSED", host);
  }
  const [error] = await once(http.get({ host: "127.0.0.1", port }), "error");
  assert.ok(["ECONNRESET", "HPE_INVALID_CONSTANT"].includes(error.code), error.code);
});

test("asked to end, it ends at once and takes its record along", async (t) => {
  const { child, ended, layout } = await serveGateway(t);
  child.kill("SIGTERM");
  assert.equal(await ended, 0);
  assert.equal(fs.existsSync(layout.gatewayPidFile), false);
});

test("a record that belongs to another process is left to it", async (t) => {
  const { child, ended, layout } = await serveGateway(t);
  const record = { pid: 4711, startTime: "x" };
  fs.writeFileSync(layout.gatewayPidFile, JSON.stringify(record));
  child.kill("SIGTERM");
  assert.equal(await ended, 0);
  assert.deepEqual(readRecord(layout.gatewayPidFile), record);
});

test("why it cannot serve is in its exit status", async (t) => {
  const { port } = await listenSomewhere(t);
  const portInUse = await makeConfiguredHome({ port });
  assert.equal(await launch(t, portInUse).ended, 3);

  const expired = makeServerCertificate({ issuer: authority, days: -1 });
  assert.equal(await launch(t, await makeConfiguredHome({ material: expired })).ended, 5);

  const otherHost = makeServerCertificate({ issuer: authority, hosts: ["DNS:other.example.org"] });
  const ownPort = await freePort();
  const unusable = {
    "no TLS configuration": makeHome(),
    "an untrusted issuer": await makeConfiguredHome({ approvedCA: null }),
    "another host": await makeConfiguredHome({ material: otherHost }),
    "another key": await makeConfiguredHome({ privateKey: otherHost.key }),
    "the server's own port": await makeConfiguredHome({ port: ownPort, backendPort: ownPort }),
    "a moved address": await makeConfiguredHome({ host: "old.example.org" }),
  };
  for (const [name, home] of Object.entries(unusable)) {
    assert.equal(await launch(t, home).ended, 4, name);
    assert.equal(fs.existsSync(home.layout.gatewayPidFile), false, name);
  }
});
