import assert from "node:assert/strict";
import fs from "node:fs";
import test from "node:test";
import { stageBundle } from "./support/bundle.mjs";
import { Recorder } from "./support/recorder.mjs";

test("a bundle with Node itself installs, runs, updates and runs again", async (t) => {
  const runtime = process.execPath;
  const recorder = await Recorder.installed(t, stageBundle({ version: "1.0.0", runtime }));
  const installedSize = fs.statSync(recorder.layout.runtimeFile).size;
  assert.equal(installedSize, fs.statSync(runtime).size);
  assert.equal((await recorder.service("start")).code, "started");
  assert.equal((await recorder.service("stop")).code, "stopped");
  const newBundle = stageBundle({ version: "1.1.0", runtime });
  assert.equal((await recorder.update("upgrade", newBundle)).code, "updated_stopped");
  assert.equal((await recorder.controller("check")).code, "checked");
  assert.equal((await recorder.service("start")).code, "started");
  assert.equal(JSON.parse((await recorder.getPage("/health")).body).version, "1.1.0");
});
