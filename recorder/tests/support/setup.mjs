// The setup script in a real process, spoken to line by line as the companion does, on an
// installation that is there just as far as setup looks at it.

import assert from "node:assert/strict";
import { spawn } from "node:child_process";
import { once } from "node:events";
import fs from "node:fs";
import path from "node:path";
import { fileURLToPath } from "node:url";
import { makePrivateFolder, writePrivateJson } from "../../desktop/lib/files.mjs";
import { newMarker } from "../../desktop/lib/installation.mjs";
import { layoutOf } from "../../desktop/lib/layout.mjs";
import { kDefaultPort, storedSettings } from "../../desktop/lib/settings.mjs";
import { temporaryFolder } from "./bundle.mjs";

const kFirstRun = fileURLToPath(new URL("../../desktop/first-run.mjs", import.meta.url));

export const kStartValues = Object.freeze({ name: "Desktop DVR", recordingAccess: "private" });
export const kInstallationId = "installation-under-test";

/** An installation without an application: { layout, storage, editSettings, read }. */
export function makeHome({ origin = "https://dvr.example.org:8443", ...settings } = {}) {
  const layout = layoutOf(path.join(temporaryFolder(), "home"));
  const storage = `${layout.home}-recordings`;
  const { home, configFolder, runFolder, updateFolder } = layout;
  [home, configFolder, runFolder, updateFolder, storage].forEach(makePrivateFolder);
  const defaults = storedSettings({ origin, port: kDefaultPort, storage, retentionDays: 30 });
  writePrivateJson(layout.settingsFile, { ...defaults, ...settings });
  const marker = { version: "1.0.0", installationId: kInstallationId, storage, runtime: "/none" };
  writePrivateJson(layout.marker, newMarker(marker));
  const read = (file) => JSON.parse(fs.readFileSync(file, "utf8"));
  const editSettings = (changes) =>
    writePrivateJson(layout.settingsFile, { ...read(layout.settingsFile), ...changes });
  return { layout, storage, read, editSettings };
}

/** The environment that the companion leaves to the script. */
export const kSetupEnvironment = Object.freeze(
  Object.fromEntries(
    ["PATH", "HOME", "USER", "LOGNAME", "TMPDIR", "LANG", "LC_ALL"]
      .filter((name) => process.env[name] !== undefined)
      .map((name) => [name, process.env[name]]),
  ),
);

export class SetupScript {
  #child;
  #lines = [];
  #unfinished = "";
  #arrival = null;
  #end;

  constructor(t, home, { args = ["--home", home], script = kFirstRun } = {}) {
    this.#child = spawn(process.execPath, [script, ...args], {
      env: kSetupEnvironment,
      stdio: ["pipe", "pipe", "pipe"],
    });
    this.complaints = "";
    this.#child.stdin.on("error", () => {});
    this.#child.stdout.setEncoding("utf8").on("data", (text) => this.#take(text));
    this.#child.stderr.setEncoding("utf8").on("data", (text) => (this.complaints += text));
    this.#end = once(this.#child, "close").then(([status, signal]) => {
      this.#arrival?.();
      return { status, signal };
    });
    t.after(async () => {
      this.#child.kill("SIGKILL");
      await this.#end;
    });
  }

  get pid() {
    return this.#child.pid;
  }

  /** Sends one request and returns the one reply to it. */
  request(action, values = {}) {
    this.write(`${JSON.stringify({ action, values })}\n`);
    return this.nextReply();
  }

  /** The outcome code of a request. */
  async code(action, values) {
    return (await this.request(action, values)).code;
  }

  write(bytes) {
    this.#child.stdin.write(bytes);
  }

  /** The next reply, checked for what every reply must be. */
  async nextReply() {
    while (this.#lines.length === 0) {
      const ended = Symbol("ended");
      const arrival = new Promise((resolve) => (this.#arrival = resolve));
      const first = await Promise.race([arrival, this.#end.then(() => ended)]);
      assert.ok(first !== ended || this.#lines.length > 0, `ended unasked: ${this.complaints}`);
    }
    const line = this.#lines.shift();
    assert.ok(Buffer.byteLength(line) <= 8192, "reply too long");
    const reply = JSON.parse(line);
    assert.equal(typeof reply.ok, "boolean");
    assert.equal(typeof reply.code, "string");
    return reply;
  }

  /** Ends the input and waits for the end of the script: { status, signal, rest }. */
  async finish() {
    this.#child.stdin.end();
    return { ...(await this.#end), rest: [...this.#lines, this.#unfinished].join("\n") };
  }

  async kill(signal) {
    this.#child.kill(signal);
    return this.#end;
  }

  #take(text) {
    const lines = (this.#unfinished + text).split("\n");
    this.#unfinished = lines.pop();
    this.#lines.push(...lines);
    this.#arrival?.();
  }
}
