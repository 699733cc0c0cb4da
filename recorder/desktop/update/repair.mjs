// repair: bring an interrupted update to its end where the new application is proved good,
// otherwise put the previous one back.

import fs from "node:fs";
import { isSoundApplication } from "../lib/application.mjs";
import { isUpdatePending } from "../lib/installation.mjs";
import { runSteps } from "../lib/steps.mjs";
import { withStoppedInstallation } from "./guard.mjs";
import { readPhase } from "./journal.mjs";
import { kAbandoningSteps, kReplacingSteps, kRestoringSteps, staged } from "./steps.mjs";

const kRepaired = { ok: true, code: "update_repaired_stopped" };
const kRolledBack = { ok: true, code: "update_rolled_back_stopped" };

/** `beforeStep(name)` is called ahead of every step. */
export function repair(layout, beforeStep) {
  return withStoppedInstallation(layout, async () => {
    if (!isUpdatePending(layout)) return { ok: true, code: "no_pending_update" };
    const { steps, reply } = await planOf(layout);
    await runSteps(steps, { layout }, beforeStep);
    return reply;
  });
}

async function planOf(layout) {
  const finish = { steps: kReplacingSteps, reply: kRepaired };
  const restore = { steps: kRestoringSteps, reply: kRolledBack };
  const abandon = { steps: kAbandoningSteps, reply: kRolledBack };
  switch (readPhase(layout)) {
    case "staging":
      return abandon;
    case "replacing":
      return (await isReplacementSound(layout)) ? finish : restore;
    case "restoring":
      return restore;
    default:
      // A journal that nobody can read: believe the applications instead.
      return (await isSoundApplication(layout)) ? abandon : restore;
  }
}

// The replacement is in one of two places: still staged, or already active.
function isReplacementSound(layout) {
  const isStaged = fs.existsSync(layout.stagedAppFolder);
  return isSoundApplication(isStaged ? staged(layout) : layout);
}
