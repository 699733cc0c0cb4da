import assert from "node:assert/strict";
import { spawn } from "node:child_process";
import { once } from "node:events";
import fs from "node:fs";
import path from "node:path";
import test from "node:test";
import { setTimeout as delay } from "node:timers/promises";
import { kReplacingSteps, kRestoringSteps, kStagingSteps } from "../desktop/update/steps.mjs";
import { stageBundle } from "./support/bundle.mjs";
import { crashBeforeStep } from "./support/crash.mjs";
import { Recorder, snapshotOf } from "./support/recorder.mjs";

const oldBundle = stageBundle({ version: "1.0.0" });
const newBundle = stageBundle({ version: "2.0.0" });
const kRepaired = { ok: true, code: "update_repaired_stopped" };
const kRolledBack = { ok: true, code: "update_rolled_back_stopped" };

async function installedWithRecordings(t) {
  const recorder = await Recorder.installed(t, oldBundle);
  fs.writeFileSync(path.join(recorder.storage, "garden.mov"), "garden");
  fs.writeFileSync(recorder.layout.accountFile, "{}", { mode: 0o600 });
  return recorder;
}

const keptFiles = ({ layout, storage }) => [
  ...snapshotOf(layout.configFolder),
  ...snapshotOf(storage),
];

const crashUpgrade = (recorder, step) => crashUpdate("upgrade", recorder, step);
const crashRepair = (recorder, step) => crashUpdate("repair", recorder, step);

function crashUpdate(name, { layout: argument }, step) {
  const module = `update/${name}.mjs`;
  return crashBeforeStep(newBundle, { module, name, argument, step });
}

async function expectGoodAs(recorder, version) {
  assert.equal(recorder.version, version);
  assert.deepEqual(await recorder.controller("check"), { ok: true, code: "checked" });
  assert.equal(fs.existsSync(recorder.layout.journalFile), false);
  assert.equal(fs.existsSync(recorder.layout.stagedAppFolder), false);
}

async function expectServingAs(recorder, version) {
  await expectGoodAs(recorder, version);
  assert.deepEqual(await recorder.service("start"), { ok: true, code: "started" });
  assert.equal(JSON.parse((await recorder.getPage("/health")).body).version, version);
}

// Until the journal is opened nothing has been begun, and until the replacing is committed to, the
// old application is the one to go back to.
const kUpgradeSteps = [...kStagingSteps, ...kReplacingSteps].map(({ name }) => name);
const committed = kUpgradeSteps.indexOf("commit") + 1;

test("an update cut off before its journal is opened leaves nothing to repair", async (t) => {
  const recorder = await installedWithRecordings(t);
  await crashUpgrade(recorder, kUpgradeSteps[0]);
  await expectGoodAs(recorder, "1.0.0");
});

for (const [index, step] of kUpgradeSteps.entries()) {
  if (index === 0) continue;
  const finishes = index >= committed;
  const outcome = finishes ? "finished" : "rolled back";

  test(`an update cut off before "${step}" is ${outcome} by a repair`, async (t) => {
    const recorder = await installedWithRecordings(t);
    const kept = keptFiles(recorder);
    await crashUpgrade(recorder, step);
    const reply = await recorder.update("repair", newBundle);
    assert.deepEqual(reply, finishes ? kRepaired : kRolledBack);
    assert.deepEqual(keptFiles(recorder), kept);
    await expectGoodAs(recorder, finishes ? "2.0.0" : "1.0.0");
  });
}

test("until a repair nothing is started or updated, after it everything is", async (t) => {
  for (const [step, version] of [
    ["check-staged", "1.0.0"],
    ["activate-staged", "2.0.0"],
  ]) {
    await t.test(`cut off before "${step}"`, async (t) => {
      const recorder = await installedWithRecordings(t);
      await crashUpgrade(recorder, step);
      const pending = { ok: false, code: "repair_pending_update" };
      assert.deepEqual(await recorder.service("start"), pending);
      assert.deepEqual(await recorder.service("status"), pending);
      assert.deepEqual(await recorder.update("upgrade", newBundle), pending);
      await recorder.update("repair", newBundle);
      await expectServingAs(recorder, version);
    });
  }
});

for (const { name: step } of kReplacingSteps) {
  test(`a repair that is itself cut off before "${step}" is finished by the next`, async (t) => {
    const recorder = await installedWithRecordings(t);
    await crashUpgrade(recorder, "set-current-aside");
    await crashRepair(recorder, step);
    assert.deepEqual(await recorder.update("repair", newBundle), kRepaired);
    await expectGoodAs(recorder, "2.0.0");
  });
}

for (const { name: step } of kRestoringSteps) {
  test(`a rollback that is itself cut off before "${step}" is finished by the next`, async (t) => {
    const recorder = await installedWithRecordings(t);
    await crashUpgrade(recorder, "check-active");
    fs.appendFileSync(recorder.layout.serverFile, "// damaged\n");
    await crashRepair(recorder, step);
    assert.deepEqual(await recorder.update("repair", newBundle), kRolledBack);
    await expectGoodAs(recorder, "1.0.0");
  });
}

test("a staged application that was damaged is not put in place", async (t) => {
  for (const step of ["set-current-aside", "activate-staged"]) {
    await t.test(`cut off before "${step}"`, async (t) => {
      const recorder = await installedWithRecordings(t);
      await crashUpgrade(recorder, step);
      fs.rmSync(path.join(recorder.layout.stagedAppFolder, "server", "pages.mjs"));
      assert.deepEqual(await recorder.update("repair", newBundle), kRolledBack);
      await expectGoodAs(recorder, "1.0.0");
    });
  }
});

test("an unreadable journal is resolved by what the applications are worth", async (t) => {
  for (const [step, version] of [
    ["set-current-aside", "1.0.0"],
    ["activate-staged", "1.0.0"],
    ["check-active", "2.0.0"],
  ]) {
    await t.test(`cut off before "${step}"`, async (t) => {
      const recorder = await installedWithRecordings(t);
      await crashUpgrade(recorder, step);
      fs.writeFileSync(recorder.layout.journalFile, "{");
      assert.deepEqual(await recorder.update("repair", newBundle), kRolledBack);
      await expectGoodAs(recorder, version);
    });
  }
});

test("a repair does not need the old application to have been whole", async (t) => {
  for (const step of ["check-staged", "set-current-aside", "check-active"]) {
    await t.test(`cut off before "${step}"`, async (t) => {
      const recorder = await installedWithRecordings(t);
      fs.rmSync(recorder.layout.appManifestFile);
      await crashUpgrade(recorder, step);
      fs.rmSync(recorder.layout.stagedAppFolder, { recursive: true, force: true });
      if (step === "check-active") fs.rmSync(recorder.layout.serverFile);
      assert.deepEqual(await recorder.update("repair", newBundle), kRolledBack);
      assert.equal((await recorder.update("upgrade", newBundle)).code, "updated_stopped");
      await expectGoodAs(recorder, "2.0.0");
    });
  }
});

test("an update killed at any moment can be repaired", async (t) => {
  const recorder = await installedWithRecordings(t);
  const kept = keptFiles(recorder);
  const script = path.join(newBundle, "desktop", "update.mjs");
  const words = [script, "upgrade", "--home", recorder.layout.home];
  const startedAt = performance.now();
  assert.equal((await recorder.update("upgrade", newBundle)).code, "updated_stopped");
  const duration = performance.now() - startedAt;

  const kRounds = 12;
  for (let round = 0; round < kRounds; ++round) {
    const updater = spawn(process.execPath, words, { stdio: "ignore" });
    const ended = once(updater, "exit");
    // Spread over the time of a whole update; wherever a kill lands, the same must hold.
    await delay((duration * (round + 1)) / (kRounds + 1));
    updater.kill("SIGKILL");
    await ended;
    const { ok, code } = await recorder.update("repair", newBundle);
    assert.ok(ok, code);
    assert.deepEqual(await recorder.controller("check"), { ok: true, code: "checked" });
    assert.deepEqual(keptFiles(recorder), kept);
  }
});
