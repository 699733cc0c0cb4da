import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import fs from "node:fs";
import path from "node:path";
import test from "node:test";
import { tryLock } from "../desktop/lib/lock.mjs";
import { writeOwnRecord } from "../desktop/lib/processes.mjs";
import { launcher, stageBundle, temporaryFolder, writeExecutable } from "./support/bundle.mjs";
import { Recorder, snapshotOf } from "./support/recorder.mjs";

const oldBundle = stageBundle({ version: "1.0.0" });
const newBundle = stageBundle({ version: "2.0.0" });
const refusal = (code) => ({ ok: false, code });

async function installedWithRecordings(t) {
  const recorder = await Recorder.installed(t, oldBundle);
  await recorder.service("start");
  await recorder.service("stop");
  fs.writeFileSync(path.join(recorder.storage, "garden.mov"), "garden");
  return recorder;
}

const keptFiles = ({ layout, storage }) => [
  ...snapshotOf(layout.configFolder),
  ...snapshotOf(storage),
];

test("an update replaces the application, keeps everything else, and starts nothing", async (t) => {
  const recorder = await installedWithRecordings(t);
  const kept = keptFiles(recorder);
  const reply = await recorder.update("upgrade", newBundle);
  const node = recorder.layout.runtimeFile;
  assert.deepEqual(reply, { ok: true, code: "updated_stopped", node });
  assert.deepEqual(keptFiles(recorder), kept);
  assert.equal(recorder.version, "2.0.0");
  assert.deepEqual(await recorder.service("status"), { ok: true, code: "stopped" });
  assert.deepEqual(await recorder.controller("check"), { ok: true, code: "checked" });

  await recorder.service("start");
  assert.equal(JSON.parse((await recorder.getPage("/health")).body).version, "2.0.0");
});

test("the previous application is kept for rollback, and only that one", async (t) => {
  const recorder = await Recorder.installed(t, oldBundle);
  const { previousAppFolder, updateFolder } = recorder.layout;
  for (const expected of ["1.0.0", "2.0.0"]) {
    await recorder.update("upgrade", newBundle);
    const manifest = fs.readFileSync(path.join(previousAppFolder, "manifest.json"), "utf8");
    assert.equal(JSON.parse(manifest).version, expected);
    assert.deepEqual(fs.readdirSync(updateFolder), [path.basename(previousAppFolder)]);
  }
});

test("what earlier attempts left behind is cleared away", async (t) => {
  const recorder = await Recorder.installed(t, oldBundle);
  const { stagedAppFolder, journalFile, marker, updateFolder } = recorder.layout;
  fs.mkdirSync(stagedAppFolder);
  fs.writeFileSync(path.join(stagedAppFolder, "half"), "");
  for (const file of [journalFile, marker]) fs.writeFileSync(`${file}.0123456789abcdef.tmp`, "{");
  assert.equal((await recorder.update("upgrade", newBundle)).code, "updated_stopped");
  assert.deepEqual(fs.readdirSync(updateFolder), ["previous"]);
  assert.deepEqual(
    fs.readdirSync(recorder.layout.home).filter((name) => name.endsWith(".tmp")),
    [],
  );
});

test("an application that is damaged or gone is mended by an update", async (t) => {
  for (const part of ["runtimeFile", "appManifestFile", "appFolder"]) {
    await t.test(part, async (t) => {
      const recorder = await Recorder.installed(t, oldBundle);
      fs.rmSync(recorder.layout[part], { recursive: true });
      assert.equal((await recorder.controller("check")).code, "installation_not_ready");
      assert.equal((await recorder.update("upgrade", newBundle)).code, "updated_stopped");
      assert.equal((await recorder.controller("check")).code, "checked");
      assert.equal(recorder.version, "2.0.0");
    });
  }
});

test("nothing is updated while the server or the gateway runs", async (t) => {
  const recorder = await Recorder.installed(t, oldBundle);
  await recorder.service("start");
  for (const word of ["upgrade", "repair"]) {
    assert.deepEqual(await recorder.update(word, newBundle), refusal("stop_services_first"));
  }
  await recorder.service("stop");

  // This test's own process stands for a gateway that is still there.
  writeOwnRecord(recorder.layout.gatewayPidFile);
  t.after(() => fs.rmSync(recorder.layout.gatewayPidFile, { force: true }));
  assert.deepEqual(await recorder.update("upgrade", newBundle), refusal("stop_services_first"));
  fs.rmSync(recorder.layout.gatewayPidFile);
  assert.equal(recorder.version, "1.0.0");
});

test("nothing is updated while account setup is open", async (t) => {
  const recorder = await Recorder.installed(t, oldBundle);
  const setup = tryLock(recorder.layout.setupLockFile);
  for (const word of ["upgrade", "repair"]) {
    assert.deepEqual(await recorder.update(word, newBundle), refusal("close_enrollment_first"));
  }
  setup.release();
  assert.equal((await recorder.update("upgrade", newBundle)).code, "updated_stopped");
});

test("nothing is updated while another update is active", async (t) => {
  const recorder = await Recorder.installed(t, oldBundle);
  const lock = tryLock(recorder.layout.updateLockFile);
  for (const word of ["upgrade", "repair"]) {
    assert.deepEqual(await recorder.update(word, newBundle), refusal("update_in_progress"));
  }
  lock.release();
});

test("several updates at once do not get in each other's way", async (t) => {
  const recorder = await Recorder.installed(t, oldBundle);
  const replies = await Promise.all([1, 2, 3].map(() => recorder.update("upgrade", newBundle)));
  const codes = new Set(replies.map(({ code }) => code));
  assert.ok(codes.delete("updated_stopped"));
  codes.delete("update_in_progress");
  assert.deepEqual([...codes], []);
  assert.deepEqual(await recorder.controller("check"), { ok: true, code: "checked" });
  assert.equal(recorder.version, "2.0.0");
});

test("an update that does not fit on the disk begins nothing", async (t) => {
  const recorder = await Recorder.installed(t, oldBundle);
  // A launcher with a hole behind it, larger than what is free: it runs, but cannot be copied.
  const runtime = launcher(process.execPath);
  const { bavail, bsize } = fs.statfsSync(recorder.layout.home);
  const huge = stageBundle({ version: "3.0.0" });
  fs.copyFileSync(runtime, path.join(huge, "bundle", "runtime", "bin", "node"));
  fs.truncateSync(path.join(huge, "bundle", "runtime", "bin", "node"), bavail * bsize + 2 ** 32);
  assert.deepEqual(await recorder.update("upgrade", huge), refusal("insufficient_update_space"));
  assert.deepEqual(await recorder.update("repair", huge), { ok: true, code: "no_pending_update" });
  assert.equal(recorder.version, "1.0.0");
});

const canMount = process.platform === "linux" && process.getuid() === 0;

test("space that runs out on the way is given back", { skip: !canMount }, async (t) => {
  const folder = temporaryFolder();
  execFileSync("mount", ["-t", "tmpfs", "-o", "size=64m,mode=0700", "recorder-test", folder]);
  t.after(() => execFileSync("umount", [folder]));
  const recorder = new Recorder(t, oldBundle, path.join(folder, "home"));
  await recorder.install();

  const { upgrade } = await import(path.join(newBundle, "desktop", "update", "upgrade.mjs"));
  const fillDisk = (step) => {
    if (step !== "copy-application") return;
    const { bavail, bsize } = fs.statfsSync(folder);
    fs.writeFileSync(path.join(folder, "full"), Buffer.alloc(bavail * bsize));
  };
  await assert.rejects(upgrade(recorder.layout, fillDisk), { code: "insufficient_update_space" });
  fs.rmSync(path.join(folder, "full"));
  assert.deepEqual(await recorder.update("repair"), { ok: true, code: "no_pending_update" });
  assert.deepEqual(await recorder.controller("check"), { ok: true, code: "checked" });
});

test("an update with a runtime that does not run begins nothing", async (t) => {
  const recorder = await Recorder.installed(t, oldBundle);
  for (const commands of ["exit 1", "echo v21.9.9"]) {
    const broken = stageBundle({ version: "3.0.0", runtime: writeExecutable(commands) });
    assert.deepEqual(await recorder.update("upgrade", broken), refusal("runtime_check_failed"));
  }
  assert.deepEqual(await recorder.update("repair"), { ok: true, code: "no_pending_update" });
  assert.equal(recorder.version, "1.0.0");
});

test("an update whose runtime fails where it is installed is rolled back", async (t) => {
  const recorder = await installedWithRecordings(t);
  const kept = keptFiles(recorder);
  const onlyInBundle = `case "$0" in */bundle/*) exec '${process.execPath}' "$@" ;; esac; exit 1`;
  const onlyWhileStaged = `case "$0" in */app/*) exit 1 ;; esac; exec '${process.execPath}' "$@"`;
  for (const commands of [onlyInBundle, onlyWhileStaged]) {
    const broken = stageBundle({ version: "3.0.0", runtime: writeExecutable(commands) });
    const reply = await recorder.update("upgrade", broken);
    assert.deepEqual(reply, refusal("update_rolled_back_stopped"));
    assert.equal(recorder.version, "1.0.0");
    assert.deepEqual(await recorder.controller("check"), { ok: true, code: "checked" });
    assert.deepEqual(await recorder.update("repair"), { ok: true, code: "no_pending_update" });
    assert.deepEqual(keptFiles(recorder), kept);
  }
});

test("an update from a bundle without a version is rolled back", async (t) => {
  const recorder = await Recorder.installed(t, oldBundle);
  const broken = stageBundle();
  fs.rmSync(path.join(broken, "bundle", "manifest.json"));
  assert.deepEqual(
    await recorder.update("upgrade", broken),
    refusal("update_rolled_back_stopped"),
  );
  assert.deepEqual(await recorder.controller("check"), { ok: true, code: "checked" });
});

test("without an installation there is nothing to update", async (t) => {
  const recorder = new Recorder(t, oldBundle);
  for (const word of ["upgrade", "repair"]) {
    assert.deepEqual(await recorder.update(word), refusal("installation_not_ready"));
  }
});

test("without an interrupted update there is nothing to repair", async (t) => {
  const recorder = await Recorder.installed(t, oldBundle);
  const before = snapshotOf(recorder.layout.appFolder);
  const reply = await recorder.update("repair", newBundle);
  assert.deepEqual(reply, { ok: true, code: "no_pending_update" });
  assert.deepEqual(snapshotOf(recorder.layout.appFolder), before);
});
