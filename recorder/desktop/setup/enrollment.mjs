// The account approval: asking for it, waiting for it, checking the saved one, renewing it. Nothing
// here ever replaces a saved approval except a renewal of that very approval.
//
// Each action resolves to a reply, or refuses with an outcome code.

import { randomUUID } from "node:crypto";
import { isPresent } from "../lib/files.mjs";
import { refuse } from "../lib/reply.mjs";
import {
  dropPendingRequest,
  isPollDue,
  readPendingRequest,
  savePendingRequest,
} from "./pending-request.mjs";
import { areRecordingsOwned, noteRecordingOwner } from "./recording-owner.mjs";
import {
  hasScope,
  isApprovalSaved,
  isForInstallation,
  readApproval,
  saveApproval,
  saveGrant,
} from "./saved-approval.mjs";

// RFC 8628, section 3.5.
const kSlowDownMs = 5000;

const kPaired = Object.freeze({ ok: true, code: "enrollment_paired" });
const kNotYet = Object.freeze({ ok: true, code: "enrollment_pending" });
const pendingReply = ({ userCode }) => ({ ...kNotYet, userCode });

export class Enrollment {
  #layout;
  #installation;
  #client;
  #now;

  /** `installation`: { origin, installationId, storage, approvalOrigin } as configured now. */
  constructor({ layout, installation, client, now = Date.now }) {
    this.#layout = layout;
    this.#installation = installation;
    this.#client = client;
    this.#now = now;
  }

  async start({ name, recordingAccess }) {
    if (!isDisplayName(name) || recordingAccess !== "private") refuse("setup_failed");
    if (this.#installation.origin === "") refuse("setup_failed");
    if (this.#wouldOrphanState()) refuse("existing_state_requires_dashboard");

    // Asking twice must not leave the owner with two requests to choose from.
    const waiting = this.#pending();
    if (waiting !== null) return pendingReply(waiting);

    const { origin: server, installationId: installation } = this.#installation;
    const opened = await this.#client.requestApproval({
      name,
      recordingAccess,
      server,
      installation,
    });
    if (opened === null) refuse("setup_failed");
    const { deviceCode, userCode, intervalMs, lifeMs } = opened;
    savePendingRequest(this.#layout, {
      service: this.#client.origin,
      server,
      installation,
      deviceCode,
      userCode,
      intervalMs,
      nextPollAt: this.#now() + intervalMs,
      expiresAt: this.#now() + lifeMs,
    });
    return pendingReply(opened);
  }

  async poll() {
    // Approved already, perhaps in the very moment the last answer was lost.
    if (isApprovalSaved(this.#layout)) return this.resume();
    const pending = this.#pending();
    if (pending === null) return this.#giveUp();
    if (!isPollDue(pending, this.#now())) return kNotYet;

    const verdict = await this.#client.poll(pending.deviceCode);
    if (verdict === null) refuse("setup_failed");
    if (verdict.error === "authorization_pending") return this.#waitOn(pending);
    if (verdict.error === "slow_down") return this.#slowDown(pending);
    // Refused, lapsed or unknown: this request will never be granted.
    if (verdict.error) return this.#giveUp();
    return this.#accept(verdict);
  }

  async resume() {
    const saved = this.#requireSaved();
    if (saved.leaseExpiresAt <= this.#now()) refuse("saved_peer_lease_invalid");
    const facts = await this.#client.inspect(saved.token);
    if (facts === null) refuse("setup_failed");
    if (!facts.active) refuse("saved_peer_lease_invalid");
    if (!hasScope(saved, facts)) refuse("saved_peer_scope_mismatch");
    return this.#paired(saved.scope);
  }

  async renew() {
    const saved = this.#requireSaved();
    // Saved before it is sent: should the answer be lost, repeating the same operation gets the
    // credential that the first try already produced.
    const operation = saved.renewal?.operation ?? randomUUID();
    saveApproval(this.#layout, { ...saved, renewal: { operation } });

    const verdict = await this.#client.renew(saved.token, operation);
    if (verdict === null) refuse("saved_peer_renewal_retry");
    if (verdict.error) {
      saveApproval(this.#layout, { ...saved, renewal: null });
      refuse(
        verdict.error === "reapproval_required" ? "saved_peer_reapproval_required" : "setup_failed",
      );
    }
    if (!hasScope(saved, verdict)) refuse("saved_peer_scope_mismatch");
    return this.#accept(verdict);
  }

  #pending() {
    return readPendingRequest(this.#layout, this.#installation, this.#now());
  }

  // A new approval makes a new peer. What the old one could reach would be left without anybody who
  // may: the saved approval itself, a login that was set under it, recordings made under it.
  #wouldOrphanState() {
    return (
      isApprovalSaved(this.#layout) ||
      isPresent(this.#layout.loginFile) ||
      areRecordingsOwned(this.#installation.storage)
    );
  }

  #requireSaved() {
    const saved = readApproval(this.#layout) ?? refuse("saved_peer_missing");
    if (!isForInstallation(saved, this.#installation)) refuse("saved_peer_scope_mismatch");
    return saved;
  }

  #waitOn(pending) {
    const nextPollAt = this.#now() + pending.intervalMs;
    savePendingRequest(this.#layout, { ...pending, nextPollAt });
    return pendingReply(pending);
  }

  #slowDown(pending) {
    const intervalMs = pending.intervalMs + kSlowDownMs;
    const nextPollAt = this.#now() + intervalMs;
    savePendingRequest(this.#layout, { ...pending, intervalMs, nextPollAt });
    return kNotYet;
  }

  #giveUp() {
    dropPendingRequest(this.#layout);
    return refuse("setup_failed");
  }

  #accept(grant) {
    const { origin, installationId } = this.#installation;
    if (grant.server !== origin || grant.installation !== installationId) return this.#giveUp();
    saveGrant(this.#layout, this.#client.origin, grant);
    return this.#paired(grant);
  }

  #paired(scope) {
    dropPendingRequest(this.#layout);
    noteRecordingOwner(this.#installation.storage, scope);
    return kPaired;
  }
}

function isDisplayName(value) {
  return typeof value === "string" && /^[^\p{C}]{1,64}$/u.test(value) && value.trim() !== "";
}
