// Updating the recorder, and what is left when an update is cut off in the middle.

import assert from "node:assert/strict";
import fs from "node:fs";
import { setImmediate } from "node:timers/promises";
import { isAlive, kill, scriptOf } from "../processes.mjs";
import { eventually } from "../waiting.mjs";
import { askAndAccept } from "./installing.mjs";
import { kStart, startService, stopService } from "./service.mjs";

const kInformation =
  "Stop DVR and close account setup first. Application/runtime files may be replaced; " +
  "configuration and recordings are preserved. No service starts automatically.";
export const kUpdate = {
  question: "Update DVR?",
  text: kInformation,
  safe: "Cancel",
  proceed: "Continue",
};
const kRepair = { ...kUpdate, question: "Repair Interrupted Update?" };
const kRefusedStart = "An interrupted update needs Repair before starting DVR.";

export async function updateRecorder(tour) {
  const { layout, program, step } = tour;

  await step("Update DVR while it runs", async () => {
    await startService(program);
    return program.outcome("Stop both DVR and its TLS gateway before updating.", () =>
      chooseAndAccept(program, "Update DVR...", kUpdate),
    );
  });

  await step("Update DVR, stopped", async () => {
    await stopService(program);
    const said = await program.outcome(
      "DVR updated. Configuration and recordings retained; service stays stopped.",
      () => chooseAndAccept(program, "Update DVR...", kUpdate),
    );
    assert.equal(await program.text("Node executable"), layout.runtimeFile);
    return said;
  });
}

export async function interruptUpdates(tour) {
  const { layout, program, step } = tour;
  const kept = keptFiles(tour);
  assert.ok(kept.length > 1);

  await cutOff(
    "while the new application is made",
    ({ journalFile }) => phaseOf(journalFile) === "staging",
    "Previous application restored. Configuration and recordings retained.",
  );
  // Not between its two renames, where there is no Node to run: the form's check comes first then.
  await cutOff(
    "when it took the old one's place",
    ({ journalFile, stagedAppFolder }) =>
      phaseOf(journalFile) === "replacing" && !fs.existsSync(stagedAppFolder),
    "Update repaired. Service stays stopped.",
  );

  await step("Repair with nothing to repair", () =>
    program.outcome("No interrupted update found.", () => repair(program)),
  );

  assert.deepEqual(keptFiles(tour), kept);
  await step("Start DVR after the repairs", () => startService(program));
  await stopService(program);

  async function cutOff(moment, isThen, repaired) {
    await step(`Update DVR, killed ${moment}`, async () => {
      const said = await program.outcome(
        "Action outcome unknown. Refresh status before retrying.",
        async () => {
          await chooseAndAccept(program, "Update DVR...", kUpdate);
          await killUpdate(program, () => isThen(layout));
        },
      );
      assert.ok(fs.existsSync(layout.journalFile));
      return said;
    });

    await step(`Start DVR after that`, () =>
      program.outcome(kRefusedStart, () => askAndAccept(program, "Start DVR", kStart)),
    );

    await step(`Repair after that`, async () => {
      const said = await program.outcome(repaired, () => repair(program));
      assert.ok(!fs.existsSync(layout.journalFile));
      return said;
    });
  }
}

const repair = (program) => chooseAndAccept(program, "Repair Interrupted Update...", kRepair);

export async function chooseAndAccept(program, item, alert) {
  await program.choose(item);
  await program.expectAlert(alert);
  await program.accept(alert);
}

// Watched without a pause, as some moments are short.
async function killUpdate(program, isThen) {
  const update = await eventually(() => scriptOf(program.pid, "update.mjs"), "the update's script");
  while (!isThen()) {
    if (!isAlive(update)) throw new Error("the update ended before it could be killed");
    await setImmediate();
  }
  kill([update]);
}

// The journal says how far the update has come.
function phaseOf(journalFile) {
  try {
    return JSON.parse(fs.readFileSync(journalFile, "utf8")).phase;
  } catch {
    return undefined;
  }
}

// Configuration and recordings, byte by byte.
function keptFiles({ layout, scratch, storage }) {
  return [layout.configFolder, storage].flatMap((folder) => scratch.files(folder));
}
