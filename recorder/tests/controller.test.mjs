import assert from "node:assert/strict";
import fs from "node:fs";
import test from "node:test";
import { tryLock } from "../desktop/lib/lock.mjs";
import { stageBundle, writeExecutable } from "./support/bundle.mjs";
import { Recorder } from "./support/recorder.mjs";

const bundle = stageBundle();
const refusal = (code) => ({ ok: false, code });
const kPages = { overview: "/dashboard", recordings: "/recordings", shares: "/shares" };

test("pages open at the configured origin while the recorder runs", async (t) => {
  const recorder = await Recorder.installed(t, bundle);
  for (const word of Object.keys(kPages)) {
    assert.deepEqual(await recorder.controller(word), refusal("stopped_or_unhealthy"));
  }
  await recorder.service("start");
  for (const [word, page] of Object.entries(kPages)) {
    const url = `https://dvr.example.org${page}`;
    assert.deepEqual(await recorder.controller(word), { ok: true, code: "ready", url });
    assert.equal((await recorder.getPage(page)).status, 200);
  }
});

test("pages and checks without an origin ask for one", async (t) => {
  const recorder = await Recorder.installed(t, bundle);
  recorder.editSettings({ DVR_PUBLIC_ORIGIN: "" });
  for (const word of ["check", ...Object.keys(kPages)]) {
    assert.deepEqual(await recorder.controller(word), refusal("origin_required"));
  }
});

test("the configuration folder can be opened, whatever is wrong with a setting", async (t) => {
  const recorder = await Recorder.installed(t, bundle);
  const configurationPath = recorder.layout.configFolder;
  const reply = { ok: true, code: "ready", configurationPath };
  assert.deepEqual(await recorder.controller("inspect"), reply);
  fs.writeFileSync(recorder.layout.settingsFile, "{");
  assert.deepEqual(await recorder.controller("inspect"), reply);
});

test("a fresh installation passes the check", async (t) => {
  const recorder = await Recorder.installed(t, bundle);
  assert.deepEqual(await recorder.controller("check"), { ok: true, code: "checked" });
});

test("the check finds what is wrong with the configuration", async (t) => {
  const faults = {
    "settings readable by others": ({ layout }) => fs.chmodSync(layout.settingsFile, 0o644),
    "settings are a link": ({ layout }) => {
      fs.renameSync(layout.settingsFile, `${layout.settingsFile}.real`);
      fs.symlinkSync(`${layout.settingsFile}.real`, layout.settingsFile);
    },
    "settings missing": ({ layout }) => fs.rmSync(layout.settingsFile),
    "settings not JSON": ({ layout }) => fs.writeFileSync(layout.settingsFile, "DVR_PORT=3000"),
    "settings not an object": ({ layout }) => fs.writeFileSync(layout.settingsFile, "[]"),
    "settings too large": ({ layout }) =>
      fs.appendFileSync(layout.settingsFile, " ".repeat(65536)),
    "origin not https": (recorder) =>
      recorder.editSettings({ DVR_PUBLIC_ORIGIN: "http://dvr.example.org" }),
    "origin not text": (recorder) => recorder.editSettings({ DVR_PUBLIC_ORIGIN: 5 }),
    "port out of range": (recorder) => recorder.editSettings({ DVR_PORT: 65536 }),
    "port not a number": (recorder) => recorder.editSettings({ DVR_PORT: "3000" }),
    "retention out of range": (recorder) => recorder.editSettings({ DVR_RETENTION_DAYS: 3651 }),
    "storage relative": (recorder) => recorder.editSettings({ DVR_STORAGE: "recordings" }),
    "storage missing": ({ storage }) => fs.rmdirSync(storage),
    "storage open to others": ({ storage }) => fs.chmodSync(storage, 0o755),
    "home open to others": ({ layout }) => fs.chmodSync(layout.home, 0o755),
    "configuration folder open to others": ({ layout }) =>
      fs.chmodSync(layout.configFolder, 0o750),
    "marker readable by others": ({ layout }) => fs.chmodSync(layout.marker, 0o644),
    "marker damaged": ({ layout }) => fs.writeFileSync(layout.marker, "{}"),
    "runtime too old": ({ layout }) =>
      fs.copyFileSync(writeExecutable("echo v20.19.0"), layout.runtimeFile),
  };
  for (const [name, cause] of Object.entries(faults)) {
    await t.test(name, async (t) => {
      const recorder = await Recorder.installed(t, bundle);
      cause(recorder);
      assert.deepEqual(await recorder.controller("check"), refusal("configuration_invalid"));
    });
  }
});

test("the check finds an application that is damaged or incomplete", async (t) => {
  const faults = {
    "server changed": ({ layout }) => fs.appendFileSync(layout.serverFile, "\n"),
    "server missing": ({ layout }) => fs.rmSync(layout.serverFile),
    "runtime missing": ({ layout }) => fs.rmSync(layout.runtimeFile),
    "list of files missing": ({ layout }) => fs.rmSync(layout.appManifestFile),
    "helpers missing": ({ layout }) => fs.rmSync(layout.libraryFolder, { recursive: true }),
  };
  for (const [name, cause] of Object.entries(faults)) {
    await t.test(name, async (t) => {
      const recorder = await Recorder.installed(t, bundle);
      cause(recorder);
      assert.deepEqual(await recorder.controller("check"), refusal("installation_not_ready"));
    });
  }
});

test("files of another account are not trusted", { skip: process.getuid() !== 0 }, async (t) => {
  const recorder = await Recorder.installed(t, bundle);
  fs.chownSync(recorder.layout.settingsFile, 12345, 12345);
  assert.deepEqual(await recorder.controller("check"), refusal("configuration_invalid"));
});

test("without an installation there is nothing to open or check", async (t) => {
  const recorder = new Recorder(t, bundle);
  for (const word of ["check", "inspect", ...Object.keys(kPages)]) {
    assert.deepEqual(await recorder.controller(word), refusal("installation_not_ready"));
  }
});

test("an update that is active or interrupted is said to be", async (t) => {
  const recorder = await Recorder.installed(t, bundle);
  const lock = tryLock(recorder.layout.updateLockFile);
  assert.deepEqual(await recorder.controller("check"), refusal("update_in_progress"));
  lock.release();
  fs.writeFileSync(recorder.layout.journalFile, "{}");
  assert.deepEqual(await recorder.controller("overview"), refusal("repair_pending_update"));
});
