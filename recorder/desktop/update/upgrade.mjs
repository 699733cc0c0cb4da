// upgrade: install the bundle's application over the present one.

import fs from "node:fs";
import { applicationSize } from "../lib/application.mjs";
import { isUpdatePending } from "../lib/installation.mjs";
import { bundleLayout } from "../lib/layout.mjs";
import { refuse } from "../lib/reply.mjs";
import { isSupportedRuntime } from "../lib/runtime.mjs";
import { runSteps } from "../lib/steps.mjs";
import { withStoppedInstallation } from "./guard.mjs";
import {
  kAbandoningSteps,
  kReplacingSteps,
  kRestoringSteps,
  kStagingSteps,
  staged,
} from "./steps.mjs";

// Bytes beyond the new files: block rounding, folders, journal, and air for the recorder to start.
const kSpaceReserve = 16 * 1024 * 1024;

/** `beforeStep(name)` is called ahead of every step. */
export function upgrade(layout, beforeStep) {
  return withStoppedInstallation(layout, async () => {
    if (isUpdatePending(layout)) refuse("repair_pending_update");
    const bundle = bundleLayout();
    if (!(await isSupportedRuntime(bundle.runtimeFile))) refuse("runtime_check_failed");
    requireSpace(layout, bundle);

    const context = { layout, bundle };
    await runOrUndo(kStagingSteps, kAbandoningSteps, context, beforeStep);
    await runOrUndo(kReplacingSteps, kRestoringSteps, context, beforeStep);
    return { ok: true, code: "updated_stopped", node: layout.runtimeFile };
  });
}

function requireSpace(layout, bundle) {
  const { bavail, bsize } = fs.statfsSync(layout.home);
  const needed = applicationSize(bundle, staged(layout)) + kSpaceReserve;
  if (bavail * bsize < needed) refuse("insufficient_update_space");
}

async function runOrUndo(steps, undoSteps, context, beforeStep) {
  try {
    await runSteps(steps, context, beforeStep);
  } catch (error) {
    await undo(undoSteps, context);
    refuse(isOutOfSpace(error) ? "insufficient_update_space" : "update_rolled_back_stopped");
  }
}

// The journal stays until undoing is complete, so what fails here is left for a repair.
async function undo(undoSteps, context) {
  try {
    await runSteps(undoSteps, context);
  } catch {
    refuse("repair_pending_update");
  }
}

function isOutOfSpace({ code }) {
  return code === "ENOSPC" || code === "EDQUOT";
}
