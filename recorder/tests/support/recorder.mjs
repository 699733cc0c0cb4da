// Installations to test on: real scripts in real processes, started as the companion starts them.

import assert from "node:assert/strict";
import { execFileSync, spawn } from "node:child_process";
import fs from "node:fs";
import http from "node:http";
import net from "node:net";
import path from "node:path";
import { layoutOf } from "../../desktop/lib/layout.mjs";
import { isRunning, readRecord, startTimeOf, waitUntil } from "../../desktop/lib/processes.mjs";
import { temporaryFolder } from "./bundle.mjs";

const kPatience = 60000; // milliseconds; only ever used up by a test that fails

/**
 * Runs a script of the bundle to the end of its output and returns its reply, after checking that
 * it is all that the companion may be sent.
 */
export async function runScript(resources, script, args = [], { stdin = "", env = {} } = {}) {
  const child = spawn(process.execPath, [path.join(resources, "desktop", script), ...args], {
    env,
    stdio: ["pipe", "pipe", "ignore"],
  });
  child.stdin.on("error", () => {});
  child.stdin.end(stdin);
  return parseReply(await outputOf(child));
}

export async function outputOf(child) {
  const chunks = [];
  for await (const chunk of child.stdout) chunks.push(chunk);
  return Buffer.concat(chunks);
}

function parseReply(output) {
  assert.ok(output.length <= 8192, "reply too long");
  const reply = JSON.parse(output.toString("utf8"));
  assert.equal(typeof reply.ok, "boolean");
  assert.equal(typeof reply.code, "string");
  return reply;
}

/** A place for an installation, and the scripts of `resources` at work on it. */
export class Recorder {
  constructor(t, resources, home = path.join(temporaryFolder(), "home")) {
    this.resources = resources;
    this.layout = layoutOf(home);
    this.storage = `${this.layout.home}-recordings`;
    t.after(() => this.#endProcesses());
  }

  /**
   * An installation that listens on a free port; a copy, to save time, of one that was installed.
   */
  static async installed(t, resources) {
    const recorder = new Recorder(t, resources);
    const { layout, storage } = recorder;
    execFileSync("cp", ["-Rp", await installedHome(t, resources), layout.home]);
    fs.mkdirSync(storage, { mode: 0o700 });
    editJson(layout.marker, { storage, runtime: layout.runtimeFile });
    recorder.editSettings({ DVR_STORAGE: storage, DVR_PORT: await freePort() });
    return recorder;
  }

  request(changes = {}) {
    return {
      home: this.layout.home,
      storage: this.storage,
      origin: "https://dvr.example.org",
      retentionDays: "30",
      ...changes,
    };
  }

  install(changes) {
    const stdin = JSON.stringify(this.request(changes));
    return runScript(this.resources, "install.mjs", [], { stdin });
  }

  service(word) {
    return this.#run("service.mjs", word);
  }

  controller(word) {
    return this.#run("controller.mjs", word);
  }

  update(word, resources = this.resources) {
    return this.#run("update.mjs", word, resources);
  }

  #run(script, word, resources = this.resources) {
    return runScript(resources, script, [word, "--home", this.layout.home]);
  }

  get settings() {
    return JSON.parse(fs.readFileSync(this.layout.settingsFile, "utf8"));
  }

  editSettings(changes) {
    editJson(this.layout.settingsFile, changes);
  }

  get version() {
    return JSON.parse(fs.readFileSync(this.layout.marker, "utf8")).version;
  }

  /** The running server's record. */
  get server() {
    return readRecord(this.layout.pidFile);
  }

  get recordings() {
    return fs.readdirSync(this.storage);
  }

  getPage(page) {
    return getPage(this.settings.DVR_PORT, page);
  }

  async #endProcesses() {
    for (const file of [this.layout.gatewayPidFile, this.layout.pidFile]) {
      const record = readRecord(file);
      if (record === null || !isRunning(record)) continue;
      process.kill(record.pid, "SIGCONT");
      process.kill(record.pid, "SIGKILL");
      await eventually(() => !isRunning(record));
    }
  }
}

const installedHomes = new Map();

function installedHome(t, resources) {
  if (!installedHomes.has(resources)) installedHomes.set(resources, installHome(t, resources));
  return installedHomes.get(resources);
}

async function installHome(t, resources) {
  const recorder = new Recorder(t, resources);
  assert.equal((await recorder.install()).code, "installed_stopped");
  return recorder.layout.home;
}

function editJson(file, changes) {
  const value = { ...JSON.parse(fs.readFileSync(file, "utf8")), ...changes };
  fs.writeFileSync(file, JSON.stringify(value));
}

/** Waits for `condition`; fails the test when it never holds. */
export async function eventually(condition, what = "condition") {
  assert.ok(await waitUntil(condition, kPatience), `never happened: ${what}`);
}

export function getPage(port, page) {
  return new Promise((resolve, reject) => {
    const request = http.get({ host: "127.0.0.1", port, path: page, agent: false }, (response) => {
      let body = "";
      response.setEncoding("utf8");
      response.on("data", (text) => (body += text));
      response.on("end", () => resolve({ status: response.statusCode, body }));
    });
    request.on("error", reject);
  });
}

/** A server of somebody else on a port of its own. */
export async function listenSomewhere(t) {
  const server = net.createServer((socket) => socket.destroy());
  await new Promise((resolve) => server.listen({ host: "127.0.0.1", port: 0 }, resolve));
  t.after(() => server.close());
  return { server, port: server.address().port };
}

export async function freePort() {
  const server = net.createServer();
  await new Promise((resolve) => server.listen({ host: "127.0.0.1", port: 0 }, resolve));
  const { port } = server.address();
  await new Promise((resolve) => server.close(resolve));
  return port;
}

/** A living process that has nothing to do with any recorder. */
export async function startStranger(t, program = "setInterval(() => {}, 1000)") {
  const child = spawn(process.execPath, ["-e", `${program}; console.log("up")`], {
    stdio: ["ignore", "pipe", "ignore"],
  });
  t.after(() => child.kill("SIGKILL"));
  await new Promise((resolve) => child.stdout.once("data", resolve));
  return { child, pid: child.pid, startTime: startTimeOf(child.pid) };
}

/** Every file below `folder` with its bytes, for comparing before and after. */
export function snapshotOf(folder) {
  return fs
    .readdirSync(folder, { recursive: true, withFileTypes: true })
    .filter((entry) => entry.isFile())
    .map((entry) => path.join(entry.parentPath, entry.name))
    .sort()
    .map((file) => [file, fs.readFileSync(file, "base64"), fs.statSync(file).mode]);
}
