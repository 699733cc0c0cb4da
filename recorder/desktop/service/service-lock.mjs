// One start, stop or update at a time: whoever changes which processes run holds the service lock.

import { refuseDuringUpdate, requireInstallation, requireRunFolder } from "../lib/installation.mjs";
import { isLocked, waitForLock } from "../lib/lock.mjs";
import { refuse } from "../lib/reply.mjs";

const kLockLimit = 60000; // milliseconds; a start or stop under way takes less

/** Runs `action` while no other start, stop or update does anything. */
export async function withServiceLock(layout, action) {
  requireRunFolder(layout);
  // An update holds the service lock for minutes; say so instead of waiting.
  const refuseUpdate = () => isLocked(layout.updateLockFile) && refuse("update_in_progress");
  const lock = await waitForLock(layout.serviceLockFile, kLockLimit, refuseUpdate);
  if (lock === null) refuse("operator_failed");
  try {
    return await action();
  } finally {
    lock.release();
  }
}

/** The marker of an installation that no update is changing or has left half changed. */
export function requireSettledInstallation(layout) {
  const marker = requireInstallation(layout);
  refuseDuringUpdate(layout);
  return marker;
}
