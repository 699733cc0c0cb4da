// What the tour asks of servers on this computer: free ports, pages, and the owner's part at the
// account approval service.

import { spawn } from "node:child_process";
import { once } from "node:events";
import http from "node:http";
import https from "node:https";
import net from "node:net";
import { fileURLToPath } from "node:url";

const kApprovalServer = new URL("../../recorder/approval/server.mjs", import.meta.url);

export async function freePort() {
  const server = net.createServer().listen(0, "127.0.0.1");
  await once(server, "listening");
  const { port } = server.address();
  server.close();
  await once(server, "close");
  return port;
}

/** { status, body, certificate } of a page; the certificate in PEM, over https only. */
export async function fetchPage(url, options = {}) {
  const scheme = url.startsWith("https:") ? https : http;
  const request = scheme.request(url, { agent: false, ...options }).end();
  const [response] = await once(request, "response");
  const certificate = response.socket.getPeerX509Certificate?.().toString();
  let body = "";
  for await (const text of response.setEncoding("utf8")) body += text;
  return { status: response.statusCode, body, certificate };
}

/** A page of a name that this computer alone knows, served on the loopback address. */
export function fetchSecurely(url, authority) {
  const lookup = (_name, { all }, found) =>
    all ? found(null, [{ address: "127.0.0.1", family: 4 }]) : found(null, "127.0.0.1", 4);
  return fetchPage(url, { ca: authority, lookup });
}

/** The approval service, with the tour in the owner's place. */
export class ApprovalService {
  static async start(scratch) {
    const service = new ApprovalService();
    const args = ["--port", "0", "--state", scratch.path("approvals.json"), "--interval", "0"];
    // The home is what cleaning up knows the tour's processes by.
    const options = {
      env: { HOME: scratch.path("home") },
      stdio: ["ignore", "pipe", "inherit"],
    };
    const child = spawn(process.execPath, [fileURLToPath(kApprovalServer), ...args], options);
    const [line] = await once(child.stdout.setEncoding("utf8"), "data");
    service.origin = JSON.parse(line).origin;
    return service;
  }

  /** The code of the one request that waits for a decision. */
  async pendingCode() {
    const { body } = await fetchPage(`${this.origin}/requests`);
    const { requests } = JSON.parse(body);
    if (requests.length !== 1) throw new Error(`${requests.length} requests wait for a decision`);
    return requests[0].userCode;
  }

  async approve(code) {
    const url = `${this.origin}/requests/${code}/approve`;
    const { status } = await fetchPage(url, { method: "POST" });
    if (status !== 200) throw new Error(`the approval was answered with ${status}`);
  }
}
