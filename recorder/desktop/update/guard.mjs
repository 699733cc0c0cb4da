// What must hold before an installation's application may change, and keeps holding while it does.

import { requireInstallation } from "../lib/installation.mjs";
import { tryLock, waitForLock } from "../lib/lock.mjs";
import { refuse } from "../lib/reply.mjs";
import { isRecordedRunning } from "../service/child.mjs";

const kLockLimit = 60000; // milliseconds; a start or stop under way takes less

/**
 * Runs `action` while no other update, account setup, start or stop can do anything, and with
 * server and gateway stopped.
 */
export async function withStoppedInstallation(layout, action) {
  requireInstallation(layout);
  const locks = [];
  const hold = (lock, code) => locks.push(lock ?? refuse(code));
  try {
    hold(tryLock(layout.updateLockFile), "update_in_progress");
    hold(tryLock(layout.setupLockFile), "close_enrollment_first");
    hold(await waitForLock(layout.serviceLockFile, kLockLimit), "operator_failed");
    const records = [layout.pidFile, layout.gatewayPidFile];
    if (records.some(isRecordedRunning)) refuse("stop_services_first");
    return await action();
  } finally {
    locks.reverse().forEach((lock) => lock.release());
  }
}
