// The settings window and the program around it: saving, being busy, closing, quitting.

import assert from "node:assert/strict";
import { environmentOf, freeze, resume, scriptOf } from "../processes.mjs";
import { kSettings, Program } from "../program.mjs";
import { eventually } from "../waiting.mjs";
import { kStorage } from "./installing.mjs";

export const kMenuCommands = [
  "Dashboard",
  "Recordings",
  "Shared Links",
  "Start DVR",
  "Stop DVR...",
  "Check Configuration",
  "Refresh Status",
  "Update DVR...",
  "Repair Interrupted Update...",
];
const kAlwaysThere = ["Settings...", "Quit Desktop App"];
const kOperatorNames = ["PATH", "HOME", "USER", "TMPDIR", "LANG", "DOCKER_HOST"];
const kWaitBeforeQuitting = "Wait for the current action before quitting.";

export async function useWindow(tour) {
  const { display, journal, layout, program, scratch, step } = tour;

  await step("Save with a Node that cannot be run", async () => {
    await program.type("Node executable", "/etc/passwd");
    return program.bringing(
      "Choose an absolute installation folder and an executable Node 22+ runtime.",
      kSettings,
      () => program.press("Save"),
    );
  });

  await step("Save", async () => {
    await program.type("Node executable", layout.runtimeFile);
    return program.bringing("Desktop settings saved. Service unchanged.", kSettings, () =>
      program.press("Save"),
    );
  });

  await step("Choose... a storage folder, and cancel", async () => {
    const before = await program.text(kStorage);
    await program.pressChooser(kStorage);
    display.photograph(journal.file("panel"));
    display.press("Escape");
    await program.expectNothingModal();
    assert.equal(await program.text(kStorage), before);
  });

  await step("Choose... a storage folder", async () => {
    await program.pressChooser(kStorage);
    display.press("Return");
    await program.expectNothingModal();
    assert.equal(await program.text(kStorage), scratch.path("home"));
  });

  await step("Quit while an action runs", () => quitWhileBusy(tour));

  await step("Close the window and show it again", async () => {
    await program.type("Retention days (first install)", "45");
    await program.clickClose();
    await program.expectShown(kSettings, false);
    await program.choose("Settings...");
    await program.expectShown(kSettings);
    assert.equal(await program.text("Retention days (first install)"), "45");
    return program.sentence();
  });

  await step("Quit, and start again", async () => {
    await program.quit();
    assert.equal(program.output, "");
    tour.program = await Program.start(tour);
    assert.equal(await tour.program.text("Installation folder"), layout.home);
    assert.equal(await tour.program.text("Node executable"), layout.runtimeFile);
    assert.equal(await tour.program.text("Retention days (first install)"), "30");
    return tour.program.sentence();
  });
}

// The script is held up while it works, as a slow disk might.
async function quitWhileBusy({ display, journal, program }) {
  await program.choose("Check Configuration");
  const script = await eventually(() => scriptOf(program.pid, "controller.mjs"), "the script");
  assert.ok(await freeze(script), "the check was over before it could be held up");
  assertEnvironment(script, kOperatorNames);

  await program.see((sight) => sight.window().sentence() === "Working...", "at work");
  const controls = (await program.look()).window().controls();
  assert.equal(controls.length, 18);
  assert.ok(controls.every(({ enabled }) => !enabled));
  await expectLockedMenu(program);
  display.photograph(journal.file("locked"));

  await program.bringing(kWaitBeforeQuitting, kSettings, () => program.choose("Quit Desktop App"));
  display.photograph(journal.file("refused"));
  resume(script);
  return program.expectSentence(
    "Configuration checked. Account/source authorization is separate.",
    kWaitBeforeQuitting,
  );
}

/** The nine commands cannot be chosen, the two last items can. */
export async function expectLockedMenu(program) {
  const items = (await program.openMenu()).filter(({ title }) => title !== "");
  assert.deepEqual(items.map(({ title }) => title), [...kMenuCommands, ...kAlwaysThere]);
  for (const { title, enabled } of items) {
    assert.equal(enabled, kAlwaysThere.includes(title), title);
  }
  await program.dismissMenu();
}

/** The process was given exactly these variables. */
export function assertEnvironment(pid, names) {
  const given = environmentOf(pid).map((entry) => entry.split("=", 1)[0]);
  assert.deepEqual(given.sort(), [...names].sort());
}
