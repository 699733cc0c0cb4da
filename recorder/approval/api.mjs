// The approval service's doors: the four that recorders use, and the owner's page with its buttons.
//
//   POST /device_authorization   RFC 8628, section 3.1    open a request
//   POST /token                  RFC 8628, section 3.4    poll for the decision
//   POST /introspect             RFC 7662                 is this credential good?
//   POST /renew                                           replace a credential
//   GET  /                                                the owner's page
//   GET  /requests, /approvals                            the same lists as JSON
//   POST /requests/<user code>/approve | refuse
//   POST /approvals/<peer>/revoke | reapprove
//
// Bodies are JSON both ways, where those RFCs have forms: both ends are ours and the values nest.

import { renderPage } from "./page.mjs";

export const kDeviceGrant = "urn:ietf:params:oauth:grant-type:device_code";
const kBodyLimit = 16 * 1024;
const kTextLimit = 512;

/** The request listener for `ledger`; `originOf()` is the service's own address once it listens. */
export function createApi(ledger, originOf) {
  const doors = recorderDoors(ledger, originOf);
  return async (request, response) => {
    try {
      const answer = isOurs(request, originOf())
        ? await route(request, ledger, doors)
        : refusal(403, "forbidden");
      send(response, answer);
    } catch (error) {
      const mistake = error instanceof BadRequest;
      send(response, mistake ? refusal(400, "invalid_request") : refusal(500, "server_error"));
    }
  };
}

class BadRequest extends Error {}

// A page on another site must neither press these buttons nor, through a host name that it points
// at this computer, read these lists.
function isOurs(request, origin) {
  const { host, origin: sender } = request.headers;
  const { port } = new URL(origin);
  const expectedHosts = [`127.0.0.1:${port}`, `localhost:${port}`];
  if (!expectedHosts.includes(host)) return false;
  return sender === undefined || sender === `http://${host}`;
}

async function route(request, ledger, doors) {
  const path = new URL(request.url, "http://127.0.0.1").pathname;
  if (request.method === "GET") return lists(path, ledger);
  if (request.method !== "POST") return refusal(405, "method_not_allowed");
  if (Object.hasOwn(doors, path)) return doors[path](await readBody(request));
  return decide(path, ledger, request);
}

function lists(path, ledger) {
  const requests = ledger.pendingRequests();
  const approvals = ledger.approvals();
  if (path === "/") return { status: 200, html: renderPage(requests, approvals) };
  if (path === "/requests") return { status: 200, body: { requests } };
  if (path === "/approvals") return { status: 200, body: { approvals } };
  return refusal(404, "not_found");
}

function recorderDoors(ledger, originOf) {
  return {
    "/device_authorization": (body) => {
      const opened = ledger.begin({
        name: text(body.name),
        server: text(body.server),
        installation: text(body.installation),
        recordingAccess: text(body.recording_access),
      });
      if (opened.error) return refusal(503, opened.error);
      return {
        status: 200,
        body: {
          device_code: opened.deviceCode,
          user_code: opened.userCode,
          verification_uri: `${originOf()}/`,
          interval: opened.intervalSeconds,
          expires_in: opened.expiresInSeconds,
        },
      };
    },
    "/token": (body) => {
      if (body.grant_type !== kDeviceGrant) return refusal(400, "unsupported_grant_type");
      return credentialOr(400, ledger.poll(text(body.device_code)));
    },
    "/introspect": (body) => {
      const { active, ...facts } = ledger.inspect(text(body.token));
      return { status: 200, body: active ? { active, ...wireFacts(facts) } : { active } };
    },
    "/renew": (body) => credentialOr(403, ledger.renew(text(body.token), text(body.operation_id))),
  };
}

function credentialOr(status, result) {
  if (result.error) return refusal(status, result.error);
  const { token, ...facts } = result;
  return { status: 200, body: { access_token: token, ...wireFacts(facts) } };
}

const wireFacts = ({ peer, server, installation, account, leaseExpiresAt }) => ({
  peer,
  server,
  installation,
  account,
  exp: Math.floor(leaseExpiresAt / 1000),
});

const kDecisions = {
  requests: {
    approve: (ledger, userCode) => ledger.decide(userCode, true),
    refuse: (ledger, userCode) => ledger.decide(userCode, false),
  },
  approvals: {
    revoke: (ledger, peer) => ledger.revoke(peer),
    reapprove: (ledger, peer) => ledger.reapprove(peer),
  },
};

function decide(path, ledger, request) {
  const [, list, subject, verb, ...rest] = path.split("/");
  const verbs = Object.hasOwn(kDecisions, list) ? kDecisions[list] : {};
  if (rest.length > 0 || !Object.hasOwn(verbs, verb ?? "")) return refusal(404, "not_found");
  if (!verbs[verb](ledger, subject)) return refusal(404, "not_found");
  // A button press comes back to the page; a program gets a plain answer.
  const fromPage = (request.headers.accept ?? "").includes("text/html");
  return fromPage ? { status: 303, location: "/" } : { status: 200, body: { ok: true } };
}

async function readBody(request) {
  const chunks = [];
  let length = 0;
  for await (const chunk of request) {
    length += chunk.length;
    if (length > kBodyLimit) throw new BadRequest();
    chunks.push(chunk);
  }
  let body;
  try {
    body = JSON.parse(Buffer.concat(chunks).toString("utf8"));
  } catch {
    throw new BadRequest();
  }
  if (body === null || typeof body !== "object" || Array.isArray(body)) throw new BadRequest();
  return body;
}

function text(value) {
  const usable = typeof value === "string" && value !== "" && value.length <= kTextLimit;
  if (!usable) throw new BadRequest();
  return value;
}

const refusal = (status, error) => ({ status, body: { error } });

function send(response, { status, body, html, location }) {
  const headers = {
    "Cache-Control": "no-store",
    "Content-Security-Policy":
      "default-src 'none'; style-src 'unsafe-inline'; form-action 'self'; frame-ancestors 'none'",
    "X-Content-Type-Options": "nosniff",
  };
  if (location) headers.Location = location;
  if (html) headers["Content-Type"] = "text/html; charset=utf-8";
  if (body) headers["Content-Type"] = "application/json";
  response.writeHead(status, headers);
  response.end(html ?? (body ? JSON.stringify(body) : ""));
}
