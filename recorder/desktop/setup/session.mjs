// The requests of one setup session: finds the action, gives it the installation as it is now, and
// turns whatever happens into a reply.

import { requireInstallation } from "../lib/installation.mjs";
import { tryLock } from "../lib/lock.mjs";
import { Refusal, refuse } from "../lib/reply.mjs";
import { readSettings } from "../lib/settings.mjs";
import { ApprovalClient } from "./approval-client.mjs";
import { Enrollment } from "./enrollment.mjs";
import { configurePassword } from "./password.mjs";
import { configureTls } from "./tls.mjs";

export const kFailureCode = "setup_failed";

const kActions = new Map([
  ["tls.configure", configureTls],
  ["enrollment.start", ({ enrollment }, values) => enrollment.start(values)],
  ["enrollment.poll", ({ enrollment }) => enrollment.poll()],
  ["enrollment.resume", ({ enrollment }) => enrollment.resume()],
  ["enrollment.renew", ({ enrollment }) => enrollment.renew()],
  ["password.configure", configurePassword],
]);

export class SetupSession {
  #layout;
  #lock = null;

  constructor(layout) {
    this.#layout = layout;
  }

  /** From here to `end` no update begins, and while one is under way every request fails. */
  begin() {
    try {
      this.#takeLock();
    } catch {
      // Nothing is installed here, or it cannot be written to: each request finds out for itself.
    }
  }

  async answer({ action, values }) {
    try {
      const perform = kActions.get(action) ?? refuse(kFailureCode);
      return await perform(this.#rooms(), values);
    } catch (error) {
      return { ok: false, code: error instanceof Refusal ? error.code : kFailureCode };
    }
  }

  end() {
    this.#lock?.release();
    this.#lock = null;
  }

  // An update, or another setup script, that held the lock at first may be through by now.
  #takeLock() {
    this.#lock ??= tryLock(this.#layout.setupLockFile);
  }

  // Read anew for every request: settings may be edited while the script lives.
  #rooms() {
    const layout = this.#layout;
    const installation = installationAt(layout);
    this.#takeLock();
    if (this.#lock === null) refuse(kFailureCode);
    const client = new ApprovalClient(installation.approvalOrigin);
    return { layout, installation, enrollment: new Enrollment({ layout, installation, client }) };
  }
}

// What an operator script would say about a damaged installation is not in the setup vocabulary.
function installationAt(layout) {
  try {
    const { installationId } = requireInstallation(layout);
    return { ...readSettings(layout), installationId };
  } catch {
    return refuse(kFailureCode);
  }
}
