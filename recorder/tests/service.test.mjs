import assert from "node:assert/strict";
import { spawn } from "node:child_process";
import fs from "node:fs";
import http from "node:http";
import path from "node:path";
import test from "node:test";
import { tryLock } from "../desktop/lib/lock.mjs";
import { isRunning, writeOwnRecord } from "../desktop/lib/processes.mjs";
import { stageBundle, writeExecutable } from "./support/bundle.mjs";
import {
  eventually,
  freePort,
  listenSomewhere,
  Recorder,
  runScript,
  startStranger,
} from "./support/recorder.mjs";

const bundle = stageBundle({ version: "3.1.4" });

const kStarted = { ok: true, code: "started" };
const kRunning = { ok: true, code: "running" };
const kStopped = { ok: true, code: "stopped" };
const refusal = (code) => ({ ok: false, code });

test("start, status and stop tell the truth, and repeating them does no harm", async (t) => {
  const recorder = await Recorder.installed(t, bundle);
  assert.deepEqual(await recorder.service("status"), kStopped);
  assert.deepEqual(await recorder.service("stop"), kStopped);
  assert.deepEqual(await recorder.service("start"), kStarted);
  assert.deepEqual(await recorder.service("start"), kRunning);
  assert.deepEqual(await recorder.service("status"), kRunning);

  const server = recorder.server;
  assert.deepEqual(await recorder.service("stop"), kStopped);
  assert.equal(isRunning(server), false);
  assert.deepEqual(await recorder.service("status"), kStopped);
});

test("the server says who it is and shows the files in its storage", async (t) => {
  const recorder = await Recorder.installed(t, bundle);
  await recorder.service("start");
  fs.writeFileSync(path.join(recorder.storage, "<i>garden & gate.mov"), "x".repeat(1500));

  const health = JSON.parse((await recorder.getPage("/health")).body);
  assert.equal(health.version, "3.1.4");
  assert.equal(health.pid, recorder.server.pid);
  const recordings = (await recorder.getPage("/recordings")).body;
  assert.match(recordings, /&lt;i&gt;garden &amp; gate\.mov/);
  assert.match(recordings, /1\.5 kB/);
  assert.doesNotMatch(recordings, /<i>/);
  for (const page of ["/", "/dashboard", "/shares?from=menu"]) {
    assert.equal((await recorder.getPage(page)).status, 200, page);
  }
  assert.equal((await recorder.getPage("/config/settings.json")).status, 404);
});

test("every start adds a recording and no stop removes one", async (t) => {
  const recorder = await Recorder.installed(t, bundle);
  for (const count of [1, 2]) {
    await recorder.service("start");
    await recorder.service("stop");
    assert.equal(recorder.recordings.length, count);
  }
});

test("the server listens on this computer's own address only", async (t) => {
  const recorder = await Recorder.installed(t, bundle);
  await recorder.service("start");
  // Any address of 127.0.0.0/8 reaches a server that listens on all of them.
  const others = process.platform === "linux" ? ["127.0.0.2"] : [];
  for (const host of [...others, "::1"]) {
    const outcome = await new Promise((resolve) => {
      const request = http.get({ host, port: recorder.settings.DVR_PORT, agent: false });
      request.on("response", () => resolve("answered"));
      request.on("error", () => resolve("refused"));
    });
    assert.equal(outcome, "refused", host);
  }
});

test("several starts at once start one server", async (t) => {
  const recorder = await Recorder.installed(t, bundle);
  const replies = await Promise.all([1, 2, 3].map(() => recorder.service("start")));
  assert.deepEqual(replies.map(({ code }) => code).sort(), ["running", "running", "started"]);
  assert.equal(recorder.recordings.length, 1);
});

test("a server that was killed is reported, and can be started again", async (t) => {
  const recorder = await Recorder.installed(t, bundle);
  await recorder.service("start");
  const server = recorder.server;
  process.kill(server.pid, "SIGKILL");
  await eventually(() => !isRunning(server));
  assert.deepEqual(await recorder.service("status"), refusal("stopped_or_unhealthy"));
  assert.deepEqual(await recorder.service("start"), kStarted);
  assert.notEqual(recorder.server.pid, server.pid);
});

test("a server that hangs is reported, not started twice", async (t) => {
  const recorder = await Recorder.installed(t, bundle);
  await recorder.service("start");
  const server = recorder.server;
  process.kill(server.pid, "SIGSTOP");
  assert.deepEqual(await recorder.service("status"), refusal("stopped_or_unhealthy"));
  assert.deepEqual(await recorder.service("start"), refusal("stopped_or_unhealthy"));
  process.kill(server.pid, "SIGCONT");
  await eventually(async () => (await recorder.service("status")).code === "running");
  assert.equal(recorder.server.pid, server.pid);
  assert.deepEqual(await recorder.service("stop"), kStopped);
});

test("a process that got the server's old id is neither believed nor touched", async (t) => {
  const recorder = await Recorder.installed(t, bundle);
  const stranger = await startStranger(t);
  const leaveStaleRecord = () => {
    const record = { pid: stranger.pid, startTime: "another time", port: 1 };
    fs.writeFileSync(recorder.layout.pidFile, JSON.stringify(record));
  };
  leaveStaleRecord();
  assert.deepEqual(await recorder.service("status"), refusal("stopped_or_unhealthy"));
  assert.deepEqual(await recorder.service("stop"), kStopped);
  assert.deepEqual(await recorder.service("status"), kStopped);
  leaveStaleRecord();
  assert.deepEqual(await recorder.service("start"), kStarted);
  assert.notEqual(recorder.server.pid, stranger.pid);
  assert.equal(isRunning(stranger), true);
});

test("a port that somebody else listens on stays theirs", async (t) => {
  const recorder = await Recorder.installed(t, bundle);
  const { server, port } = await listenSomewhere(t);
  recorder.editSettings({ DVR_PORT: port });
  assert.deepEqual(await recorder.service("start"), refusal("stopped_or_unhealthy"));
  assert.equal(server.listening, true);
  assert.deepEqual(recorder.recordings, []);
  assert.deepEqual(await recorder.service("status"), kStopped);
});

test("somebody else's answer on the port does not pass for the server's", async (t) => {
  const recorder = await Recorder.installed(t, bundle);
  const impostor = http.createServer((_, response) => response.end('{"installationId":"x"}'));
  await new Promise((resolve) => impostor.listen({ host: "127.0.0.1", port: 0 }, resolve));
  t.after(() => impostor.close());
  writeOwnRecord(recorder.layout.pidFile, { port: impostor.address().port });
  t.after(() => fs.rmSync(recorder.layout.pidFile, { force: true }));
  assert.deepEqual(await recorder.service("status"), refusal("stopped_or_unhealthy"));
  fs.rmSync(recorder.layout.pidFile);
});

test("a port edited while the server runs does not lose the server", async (t) => {
  const recorder = await Recorder.installed(t, bundle);
  await recorder.service("start");
  const server = recorder.server;
  recorder.editSettings({ DVR_PORT: await freePort() });
  assert.deepEqual(await recorder.service("status"), kRunning);
  assert.deepEqual(await recorder.service("stop"), kStopped);
  assert.equal(isRunning(server), false);
});

test("without an installation nothing is started", async (t) => {
  const recorder = new Recorder(t, bundle);
  for (const word of ["start", "stop", "status"]) {
    assert.deepEqual(await recorder.service(word), refusal("installation_not_ready"));
  }
  assert.equal(fs.existsSync(recorder.layout.home), false);
});

test("an installation without its server or runtime is not ready", async (t) => {
  const recorder = await Recorder.installed(t, bundle);
  fs.rmSync(recorder.layout.runtimeFile);
  assert.deepEqual(await recorder.service("start"), refusal("installation_not_ready"));
});

test("a start without an origin asks for one", async (t) => {
  const recorder = await Recorder.installed(t, bundle);
  recorder.editSettings({ DVR_PUBLIC_ORIGIN: "" });
  assert.deepEqual(await recorder.service("start"), refusal("origin_required"));
  assert.deepEqual(await recorder.service("status"), kStopped);
});

test("an installed runtime that is too old starts nothing", async (t) => {
  const recorder = await Recorder.installed(t, bundle);
  fs.copyFileSync(writeExecutable("echo v20.19.0"), recorder.layout.runtimeFile);
  assert.deepEqual(await recorder.service("start"), refusal("configuration_invalid"));
});

test("a server that ends at once is not called started", async (t) => {
  const recorder = await Recorder.installed(t, bundle);
  fs.writeFileSync(recorder.layout.serverFile, "process.exitCode = 1;\n");
  assert.deepEqual(await recorder.service("start"), refusal("stopped_or_unhealthy"));
});

test("nothing is started or stopped while an update is active", async (t) => {
  const recorder = await Recorder.installed(t, bundle);
  const lock = tryLock(recorder.layout.updateLockFile);
  for (const word of ["start", "stop", "status"]) {
    assert.deepEqual(await recorder.service(word), refusal("update_in_progress"));
  }
  lock.release();
  assert.deepEqual(await recorder.service("start"), kStarted);
});

test("the recorder can be stopped when its configuration is not in order", async (t) => {
  const recorder = await Recorder.installed(t, bundle);
  await recorder.service("start");
  const server = recorder.server;
  fs.chmodSync(recorder.layout.configFolder, 0o755);
  fs.writeFileSync(recorder.layout.settingsFile, "{");
  assert.deepEqual(await recorder.service("start"), refusal("configuration_invalid"));
  assert.deepEqual(await recorder.service("stop"), kStopped);
  assert.equal(isRunning(server), false);
});

test("a server whose start was killed can be found, and stops", async (t) => {
  const recorder = await Recorder.installed(t, bundle);
  const script = path.join(bundle, "desktop", "service.mjs");
  const words = [script, "start", "--home", recorder.layout.home];
  const starter = spawn(process.execPath, words, { stdio: "ignore" });
  await eventually(() => recorder.recordings.length > 0, "first recording");
  starter.kill("SIGKILL");
  await eventually(async () => (await recorder.service("status")).code === "running");
  assert.deepEqual(await recorder.service("start"), kRunning);
  const server = recorder.server;
  assert.deepEqual(await recorder.service("stop"), kStopped);
  assert.equal(isRunning(server), false);
});

test("wrong words and homes fail with a code", async (t) => {
  const { home } = (await Recorder.installed(t, bundle)).layout;
  const commandLines = [
    [],
    ["start"],
    ["", "--home", home],
    ["Start", "--home", home],
    ["restart", "--home", home],
    ["__proto__", "--home", home],
    ["status", "--home"],
    ["status", "--home", ""],
    ["status", "--home", "relative"],
    ["status", "--home", "~/home"],
    ["status", "--home", `${home}"`],
    ["status", "--home", `${home}\n`],
    ["status", "--home", home, "more"],
    ["status", home],
  ];
  for (const words of commandLines) {
    const reply = await runScript(bundle, "service.mjs", words);
    assert.deepEqual(reply, refusal("operator_failed"), words.join(" "));
  }
  for (const script of ["controller.mjs", "update.mjs"]) {
    for (const words of commandLines.slice(0, 7)) {
      const reply = await runScript(bundle, script, words);
      assert.deepEqual(reply, refusal("operator_failed"), `${script} ${words.join(" ")}`);
    }
  }
});
