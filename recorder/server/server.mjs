// server.mjs --home HOME
// The recorder's server: serves its pages to this computer only and adds to the recordings. It can
// be found through the record it writes once it listens, and ends properly on SIGTERM.

import fs from "node:fs";
import http from "node:http";
import { homeArgument } from "../desktop/lib/arguments.mjs";
import { requireInstallation } from "../desktop/lib/installation.mjs";
import { readRecord, writeOwnRecord } from "../desktop/lib/processes.mjs";
import { readSettings } from "../desktop/lib/settings.mjs";
import { renderDashboard, renderRecordings, renderShares } from "./pages.mjs";
import { listRecordings, writeSegment } from "./storage.mjs";

const layout = homeArgument();
const { installationId, version } = requireInstallation(layout);
const { port, storage, retentionDays } = readSettings(layout);

const kPages = new Map([
  ["/", dashboard],
  ["/dashboard", dashboard],
  ["/recordings", () => html(renderRecordings(listRecordings(storage)))],
  ["/shares", () => html(renderShares())],
  ["/health", () => json({ installationId, version, pid: process.pid })],
]);

function dashboard() {
  return html(renderDashboard({ version, retentionDays, recordings: listRecordings(storage) }));
}

const html = (body) => ({ type: "text/html; charset=utf-8", body });
const json = (value) => ({ type: "application/json", body: JSON.stringify(value) });

function respond(request, response) {
  const readOnly = request.method === "GET" || request.method === "HEAD";
  const page = kPages.get(request.url.split("?", 1)[0]);
  const status = readOnly ? (page ? 200 : 404) : 405;
  const { type, body } = status === 200 ? page() : { type: "text/plain", body: `${status}\n` };
  response.writeHead(status, {
    "content-type": type,
    "content-length": Buffer.byteLength(body),
    "cache-control": "no-store",
    "content-security-policy": "default-src 'none'; style-src 'unsafe-inline'",
    "x-content-type-options": "nosniff",
  });
  response.end(body);
}

const server = http.createServer((request, response) => {
  try {
    respond(request, response);
  } catch {
    response.writeHead(500).end();
  }
});

function finish() {
  server.close();
  server.closeAllConnections();
  // Whoever holds the record now, after a stop that gave up waiting, keeps it.
  if (readRecord(layout.pidFile)?.pid === process.pid) fs.rmSync(layout.pidFile, { force: true });
}

process.once("SIGTERM", finish);
// Owning the port is what makes this the one server of its installation; only then does the record
// change hands.
server.listen({ host: "127.0.0.1", port, exclusive: true }, () => {
  writeSegment(storage);
  writeOwnRecord(layout.pidFile, { port });
});
