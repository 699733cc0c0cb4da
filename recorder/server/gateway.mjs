// gateway.mjs --home HOME
// The recorder's TLS gateway: speaks HTTPS on the port of its public address, on this computer
// only, and passes everything on to the server. Serves with what TLS setup validated, and validates
// it once more: time passes, settings change. Why it ended by itself is in its exit status,
// gateway-exit.mjs.

import fs from "node:fs";
import https from "node:https";
import { homeArgument } from "../desktop/lib/arguments.mjs";
import { judgeCertificate, kMinimumTlsVersion, systemRoots } from "../desktop/lib/certificate.mjs";
import { kGatewayExit } from "../desktop/lib/gateway-exit.mjs";
import { requireInstallation } from "../desktop/lib/installation.mjs";
import { readRecord, writeOwnRecord } from "../desktop/lib/processes.mjs";
import { originAddress, readSettings } from "../desktop/lib/settings.mjs";
import { readTlsConfiguration } from "../desktop/lib/tls-configuration.mjs";
import { createProxy } from "./proxy.mjs";

const kHealthPath = "/gateway-health";

function end(status, sentence) {
  process.stderr.write(`${sentence}\n`);
  process.exit(status);
}

async function soundConfiguration() {
  const layout = homeArgument();
  const { installationId } = requireInstallation(layout);
  const settings = readSettings(layout);
  const configuration = readTlsConfiguration(layout);
  const { host, port } = originAddress(settings.origin);
  if (configuration.host !== host || configuration.port !== port) {
    throw new Error("validated for another address than the configured one");
  }
  if (port === settings.port) throw new Error("the server's own port");
  const trusted = configuration.approvedCA ?? systemRoots();
  const verdict = await judgeCertificate({ ...configuration, trusted });
  return { layout, installationId, backendPort: settings.port, verdict, ...configuration };
}

const gateway = await soundConfiguration().catch((error) =>
  end(kGatewayExit.configurationInvalid, `TLS configuration unusable: ${error.message}`),
);
if (gateway.verdict === "not_valid_now") {
  end(kGatewayExit.certificateNotValidNow, "Certificate expired or not valid yet");
}
if (gateway.verdict !== "accepted") {
  end(kGatewayExit.configurationInvalid, `Certificate refused: ${gateway.verdict}`);
}

const { layout, installationId, port } = gateway;
const { onRequest, onUpgrade } = createProxy(gateway.backendPort);

const server = https.createServer(
  {
    cert: gateway.certificates.join(""),
    key: gateway.privateKey,
    minVersion: kMinimumTlsVersion,
  },
  (request, response) => {
    if (request.url.split("?", 1)[0] === kHealthPath) reportHealth(response);
    else onRequest(request, response);
  },
);

function reportHealth(response) {
  response.writeHead(200, { "Content-Type": "application/json", "Cache-Control": "no-store" });
  response.end(JSON.stringify({ installationId, pid: process.pid }));
}

// Upgraded connections leave the server's books, but must not keep a stopped gateway alive.
const upgraded = new Set();
server.on("upgrade", (request, socket, head) => {
  upgraded.add(socket);
  socket.once("close", () => upgraded.delete(socket));
  onUpgrade(request, socket, head);
});

server.on("error", (error) =>
  end(error.code === "EADDRINUSE" ? kGatewayExit.portInUse : 1, `No gateway: ${error.code}`),
);

function finish() {
  server.close();
  server.closeAllConnections();
  upgraded.forEach((socket) => socket.destroy());
  if (readRecord(layout.gatewayPidFile)?.pid === process.pid) {
    fs.rmSync(layout.gatewayPidFile, { force: true });
  }
  process.exit(0);
}

process.once("SIGTERM", finish);
server.listen({ host: "127.0.0.1", port, exclusive: true }, () => {
  writeOwnRecord(layout.gatewayPidFile, { port });
});
