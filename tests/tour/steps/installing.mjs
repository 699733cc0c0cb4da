// Installing the recorder from the settings window.

import assert from "node:assert/strict";
import fs from "node:fs";
import { layoutOf } from "../../../recorder/desktop/lib/layout.mjs";
import { freePort } from "../network.mjs";
import { Program } from "../program.mjs";

export const kInstall = {
  question: "Install DVR for this account?",
  text:
    "Bundled runtime and server files will be installed. Existing installations are not " +
    "replaced. The service stays stopped. HTTPS proxy and account authorization are separate.",
  safe: "Cancel",
  proceed: "Install",
};
export const kInstalled =
  "DVR installed and stopped. HTTPS proxy and account/source authorization must be ready " +
  "before use.";

export const kStorage = "Recording storage (first install)";
const kHost = "dvr.example.test";

export async function installRecorder(tour) {
  const { display, journal, scratch, step } = tour;
  const program = await Program.start(tour);
  tour.program = program;
  tour.host = kHost;
  tour.origin = `https://${kHost}:${await freePort()}`;
  tour.layout = layoutOf(await program.text("Installation folder"));
  tour.storage = scratch.path("home", "Recordings");

  await step("First start", async () => {
    assert.equal(await program.text("Node executable"), tour.bundledRuntime);
    assert.equal(await program.text(kStorage), `${tour.layout.home}/data`);
    return program.sentence();
  });

  await step("Install DVR, declined with Return", async () => {
    await program.press("Install DVR");
    await program.expectAlert(kInstall);
    display.photograph(journal.file("question"));
    await program.decline(kInstall);
    assert.ok(!fs.existsSync(tour.layout.marker));
    return program.sentence();
  });

  await step("Install DVR, accepted", async () => {
    const said = await install(program, tour);
    assert.ok(fs.existsSync(tour.layout.marker));
    assert.equal(await program.text("Node executable"), tour.layout.runtimeFile);
    return said;
  });

  await step("Install DVR once more", async () =>
    program.outcome(
      "Existing installation preserved. Use its current settings; " +
        "replacement requires a reviewed upgrade.",
      () => askAndAccept(program, "Install DVR", kInstall),
    ),
  );

  await editSettings(tour.layout, { DVR_PORT: await freePort() });
}

/** Fills the form and installs what it says. */
export async function install(program, { storage, origin }) {
  await program.type(kStorage, storage);
  await program.type("Trusted HTTPS origin (existing TLS proxy)", origin);
  return program.outcome(kInstalled, () => askAndAccept(program, "Install DVR", kInstall));
}

export async function askAndAccept(program, button, alert) {
  await program.press(button);
  await program.expectAlert(alert);
  await program.accept(alert);
}

/** By hand, with the service stopped, as the recorder's own page on its settings says. */
export function editSettings({ settingsFile }, changes) {
  const settings = JSON.parse(fs.readFileSync(settingsFile, "utf8"));
  fs.writeFileSync(settingsFile, JSON.stringify({ ...settings, ...changes }));
}

export const settingsOf = ({ settingsFile }) => JSON.parse(fs.readFileSync(settingsFile, "utf8"));
