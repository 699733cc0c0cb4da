import assert from "node:assert/strict";
import { spawn } from "node:child_process";
import { once } from "node:events";
import fs from "node:fs";
import http from "node:http";
import path from "node:path";
import readline from "node:readline";
import { fileURLToPath } from "node:url";
import { kDeviceGrant } from "../approval/api.mjs";
import { temporaryFolder } from "./support/bundle.mjs";
import { otherAddresses } from "./support/addresses.mjs";
import { listenSomewhere } from "./support/recorder.mjs";
import { test } from "./support/test.mjs";

const kServer = fileURLToPath(new URL("../approval/server.mjs", import.meta.url));

const kRequest = Object.freeze({
  name: "Desktop DVR",
  server: "https://dvr.example.org:8443",
  installation: "one",
  recording_access: "private",
});

function launch(t, args) {
  const child = spawn(process.execPath, [kServer, ...args], { stdio: ["ignore", "pipe", "pipe"] });
  const ended = once(child, "exit").then(([status]) => status);
  t.after(async () => {
    child.kill("SIGKILL");
    await ended;
  });
  return { child, ended };
}

/** A running service on `state`: { origin, stop }. */
async function serve(t, state, args = []) {
  const { child, ended } = launch(t, ["--port", "0", "--state", state, "--interval", "0", ...args]);
  const [line] = await once(readline.createInterface(child.stdout), "line");
  const stop = (signal = "SIGTERM") => {
    child.kill(signal);
    return ended;
  };
  return { ...JSON.parse(line), stop };
}

const newState = () => path.join(temporaryFolder(), "state.json");

async function post(url, body, headers = {}) {
  const text = typeof body === "string" ? body : JSON.stringify(body ?? {});
  const response = await fetch(url, { method: "POST", body: text, headers, redirect: "manual" });
  const answer = await response.text();
  return { status: response.status, body: answer === "" ? null : JSON.parse(answer), response };
}

const get = async (url) => (await fetch(url)).json();

function poll(origin, code) {
  return post(`${origin}/token`, { grant_type: kDeviceGrant, device_code: code });
}

async function pair(origin) {
  const { body: opened } = await post(`${origin}/device_authorization`, kRequest);
  await post(`${origin}/requests/${opened.user_code}/approve`);
  return (await poll(origin, opened.device_code)).body;
}

test("a program can ask, approve and fetch the credential", async (t) => {
  const { origin } = await serve(t, newState(), ["--lease", "60", "--account", "family"]);
  const { status, body: opened } = await post(`${origin}/device_authorization`, kRequest);
  assert.equal(status, 200);
  assert.equal(opened.verification_uri, `${origin}/`);
  assert.equal(opened.interval, 0);
  assert.equal(opened.expires_in, 600);
  const waiting = await poll(origin, opened.device_code);
  assert.deepEqual([waiting.status, waiting.body], [400, { error: "authorization_pending" }]);

  const { requests } = await get(`${origin}/requests`);
  assert.deepEqual(requests.map(({ userCode }) => userCode), [opened.user_code]);
  const decided = await post(`${origin}/requests/${opened.user_code}/approve`);
  assert.deepEqual([decided.status, decided.body], [200, { ok: true }]);

  const { body: granted } = await poll(origin, opened.device_code);
  assert.equal(granted.account, "family");
  assert.equal(granted.server, kRequest.server);
  assert.ok(Math.abs(granted.exp - Date.now() / 1000 - 60) < 60);
  const { body: facts } = await post(`${origin}/introspect`, { token: granted.access_token });
  assert.equal(facts.active, true);
  assert.equal(facts.peer, granted.peer);
  assert.equal((await get(`${origin}/approvals`)).approvals[0].peer, granted.peer);
});

test("a person can approve on the page and comes back to it", async (t) => {
  const { origin } = await serve(t, newState());
  const hostile = { ...kRequest, name: `<script>"alert"</script>` };
  const { body: opened } = await post(`${origin}/device_authorization`, hostile);
  const page = await (await fetch(origin)).text();
  assert.ok(page.includes(opened.user_code));
  assert.ok(!page.includes("<script"));
  const [action] = page.match(/\/requests\/[^"]+\/approve/);

  const fromPage = { accept: "text/html", origin };
  const pressed = await post(`${origin}${action}`, "", fromPage);
  assert.deepEqual([pressed.status, pressed.response.headers.get("location")], [303, "/"]);
  const after = await (await fetch(origin)).text();
  assert.ok(after.includes("No recorder is asking for approval."));
  assert.ok(after.includes("/revoke"));
});

test("refusing, revoking and approving again work from outside", async (t) => {
  const { origin } = await serve(t, newState());
  const { body: opened } = await post(`${origin}/device_authorization`, kRequest);
  await post(`${origin}/requests/${opened.user_code}/refuse`);
  assert.deepEqual((await poll(origin, opened.device_code)).body, { error: "access_denied" });

  const { access_token: token, peer } = await pair(origin);
  assert.equal((await post(`${origin}/approvals/${peer}/revoke`)).status, 200);
  assert.deepEqual((await post(`${origin}/introspect`, { token })).body, { active: false });
  const renew = () => post(`${origin}/renew`, { token, operation_id: "operation" });
  const refused = await renew();
  assert.deepEqual([refused.status, refused.body], [403, { error: "reapproval_required" }]);
  assert.equal((await post(`${origin}/approvals/${peer}/reapprove`)).status, 200);
  assert.equal((await renew()).status, 200);
});

test("what it knows survives the end of the process, however it ends", async (t) => {
  const state = newState();
  const first = await serve(t, state);
  const { access_token: token } = await pair(first.origin);
  const { body: opened } = await post(`${first.origin}/device_authorization`, kRequest);
  await first.stop("SIGKILL");
  const second = await serve(t, state);
  assert.equal((await post(`${second.origin}/introspect`, { token })).body.active, true);
  await post(`${second.origin}/requests/${opened.user_code}/approve`);
  assert.equal(await second.stop(), 0);
  const third = await serve(t, state);
  assert.equal((await poll(third.origin, opened.device_code)).status, 200);
  assert.equal(fs.statSync(state).mode & 0o777, 0o600);
});

test("another site can neither press its buttons nor read its lists", async (t) => {
  const { origin } = await serve(t, newState());
  const { body: opened } = await post(`${origin}/device_authorization`, kRequest);
  const approve = `${origin}/requests/${opened.user_code}/approve`;
  const forged = await post(approve, "", { origin: "https://elsewhere.example.org" });
  assert.equal(forged.status, 403);
  assert.equal((await post(approve, "", { origin: "null" })).status, 403);

  const { port } = new URL(origin);
  const rebound = await new Promise((resolve) => {
    const headers = { host: `elsewhere.example.org:${port}` };
    http.get({ host: "127.0.0.1", port, path: "/requests", headers }, resolve);
  });
  rebound.resume();
  assert.equal(rebound.statusCode, 403);
  assert.equal((await get(`${origin}/requests`)).requests.length, 1);
});

test("it listens to this computer only", async (t) => {
  const { origin } = await serve(t, newState());
  const { hostname, port } = new URL(origin);
  assert.equal(hostname, "127.0.0.1");
  for (const host of otherAddresses()) {
    const [error] = await once(http.get({ host, port }), "error");
    assert.equal(error.code, "ECONNREFUSED", host);
  }
});

test("nonsense is refused and does no harm", async (t) => {
  const { origin } = await serve(t, newState());
  const bodies = ["", "{", "[]", "null", "{}", '{"name":7}', JSON.stringify("x".repeat(20000))];
  for (const door of ["device_authorization", "introspect", "renew"]) {
    for (const body of bodies) {
      const { status } = await post(`${origin}/${door}`, body);
      assert.equal(status, 400, `${door} ${body.slice(0, 20)}`);
    }
  }
  const long = { ...kRequest, name: "x".repeat(600) };
  assert.equal((await post(`${origin}/device_authorization`, long)).status, 400);
  assert.equal((await post(`${origin}/token`, { grant_type: "password" })).status, 400);
  const nowhere = ["/x", "/requests/AAAA-0000/approve", "/requests/x/__proto__", "/approvals//x"];
  for (const door of nowhere) assert.equal((await post(origin + door)).status, 404, door);
  assert.equal((await fetch(`${origin}/x`)).status, 404);
  assert.equal((await fetch(origin, { method: "DELETE" })).status, 405);
  assert.deepEqual(await get(`${origin}/requests`), { requests: [] });
});

test("wrong arguments, a taken port and a damaged state file end it with a reason", async (t) => {
  const state = newState();
  assert.equal(await launch(t, ["--port", "0"]).ended, 2);
  assert.equal(await launch(t, ["--port", "x", "--state", state]).ended, 2);
  assert.equal(await launch(t, ["--port", "0", "--state", state, "--other", "1"]).ended, 2);
  const { port } = await listenSomewhere(t);
  assert.equal(await launch(t, ["--port", `${port}`, "--state", state]).ended, 1);
  fs.writeFileSync(state, "{}");
  assert.equal(await launch(t, ["--port", "0", "--state", state]).ended, 1);
  assert.equal(fs.readFileSync(state, "utf8"), "{}");
});
