import assert from "node:assert/strict";
import fs from "node:fs";
import test from "node:test";
import { kInstallSteps } from "../desktop/install/install.mjs";
import { stageBundle } from "./support/bundle.mjs";
import { crashBeforeStep } from "./support/crash.mjs";
import { Recorder } from "./support/recorder.mjs";

const bundle = stageBundle();

for (const { name: step } of kInstallSteps) {
  test(`an installation cut off before "${step}" is none, and can be made again`, async (t) => {
    const recorder = new Recorder(t, bundle);
    const { layout, storage } = recorder;
    const argument = { layout, storage, origin: "https://cut.example.org", retentionDays: 7 };
    await crashBeforeStep(bundle, {
      module: "install/install.mjs",
      name: "install",
      argument,
      step,
    });

    const notReady = { ok: false, code: "installation_not_ready" };
    assert.deepEqual(await recorder.service("start"), notReady);
    assert.deepEqual(await recorder.update("upgrade"), notReady);
    assert.equal((await recorder.install()).code, "installed_stopped");
    assert.equal(recorder.settings.DVR_PUBLIC_ORIGIN, "https://dvr.example.org");
    assert.equal((await recorder.controller("check")).code, "checked");
    assert.equal(fs.existsSync(layout.draftMarker), false);
    assert.equal(fs.existsSync(layout.stagedAppFolder), false);
  });
}

test("a marker that was cut off while being written does not stand in the way", async (t) => {
  const recorder = new Recorder(t, bundle);
  fs.mkdirSync(recorder.layout.home, { mode: 0o700 });
  fs.writeFileSync(`${recorder.layout.draftMarker}.0123456789abcdef.tmp`, "{");
  assert.equal((await recorder.install()).code, "installed_stopped");
  assert.deepEqual(
    fs.readdirSync(recorder.layout.home).filter((name) => name.endsWith(".tmp")),
    [],
  );
});
