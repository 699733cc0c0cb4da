// The approval service's book: which recorders ask for approval, which were approved, and how long
// each approval lasts. Pure rules over one plain state object; time and saving are handed in.
//
// Requests follow RFC 8628 (device authorization grant). A renewal replaces the credential; the
// operation that replaced it stays repeatable for a minute, so that a recorder whose answer was
// lost gets the same credential instead of being locked out.
//
// Times are milliseconds since 1970 inside, whole seconds on the wire. Refusals are values:
// { error: "<word>" } with the error words of RFC 8628, section 3.5.

import { deriveToken, digest, newId, newSecret, newUserCode } from "./codes.mjs";

export const kRequestLifeMs = 10 * 60 * 1000;
export const kRepeatableMs = 60 * 1000;
export const kSlowDownMs = 5 * 1000; // RFC 8628, section 3.5: each early poll adds five seconds.
const kMaxOpenRequests = 50;

export const emptyState = () => ({ version: 1, secret: newSecret(), requests: [], peers: [] });

export class Ledger {
  #state;
  #now;
  #save;
  #intervalMs;
  #leaseMs;
  #account;

  constructor({ state, save, now = Date.now, intervalMs, leaseMs, account }) {
    this.#state = state;
    this.#save = save;
    this.#now = now;
    this.#intervalMs = intervalMs;
    this.#leaseMs = leaseMs;
    this.#account = account;
  }

  // --- what a recorder asks -----------------------------------------------------------------

  /** Opens a request; the caller keeps the device code, the owner sees the user code. */
  begin({ name, server, installation, recordingAccess }) {
    this.#forgetExpiredRequests();
    const full = this.#state.requests.length >= kMaxOpenRequests;
    if (full) return { error: "temporarily_unavailable" };
    const deviceCode = newSecret();
    const request = {
      id: newId(),
      deviceDigest: digest(deviceCode),
      userCode: this.#freshUserCode(),
      name,
      server,
      installation,
      recordingAccess,
      decision: "pending",
      intervalMs: this.#intervalMs,
      nextPollAt: this.#now() + this.#intervalMs,
      expiresAt: this.#now() + kRequestLifeMs,
    };
    this.#state.requests.push(request);
    this.#save(this.#state);
    return {
      deviceCode,
      userCode: request.userCode,
      intervalSeconds: this.#intervalMs / 1000,
      expiresInSeconds: kRequestLifeMs / 1000,
    };
  }

  /** One poll with a device code: a credential, or why there is none (yet). */
  poll(deviceCode) {
    const wanted = digest(deviceCode);
    const request = this.#state.requests.find((entry) => entry.deviceDigest === wanted);
    if (!request) return { error: "invalid_grant" };
    if (request.expiresAt <= this.#now()) return { error: "expired_token" };
    if (request.decision === "refused") return { error: "access_denied" };
    if (request.decision === "approved") return this.#grant(request);
    const early = this.#now() < request.nextPollAt;
    if (early) request.intervalMs += kSlowDownMs;
    request.nextPollAt = this.#now() + request.intervalMs;
    this.#save(this.#state);
    return { error: early ? "slow_down" : "authorization_pending" };
  }

  /** Whether a credential is good right now. Says nothing about one that is not (RFC 7662). */
  inspect(token) {
    const peer = this.#peerByToken(token);
    if (!peer || peer.revoked || peer.leaseExpiresAt <= this.#now()) return { active: false };
    return { active: true, ...this.#describe(peer) };
  }

  /** Replaces a credential by a fresh one. An expired lease may be renewed, a revoked one not. */
  renew(token, operation) {
    const presented = digest(token);
    const peer = this.#state.peers.find(
      (entry) => entry.tokenDigest === presented || entry.renewal?.priorDigest === presented,
    );
    if (!peer) return { error: "reapproval_required" };
    if (this.#isRepeat(peer, operation)) return this.#credential(peer);
    const superseded = peer.tokenDigest !== presented;
    if ((superseded || peer.revoked) && !peer.reapproved) return this.#askOwnerAgain(peer);

    peer.generation += 1;
    peer.renewal = { operation, priorDigest: presented, at: this.#now() };
    peer.tokenDigest = digest(this.#tokenOf(peer));
    peer.leaseExpiresAt = this.#now() + this.#leaseMs;
    peer.revoked = false;
    peer.reapproved = false;
    peer.asksAgain = false;
    this.#save(this.#state);
    return this.#credential(peer);
  }

  // --- what the owner decides ---------------------------------------------------------------

  pendingRequests() {
    return this.#state.requests
      .filter((entry) => entry.decision === "pending" && entry.expiresAt > this.#now())
      .map(({ userCode, name, server, installation, recordingAccess, expiresAt }) => ({
        userCode,
        name,
        server,
        installation,
        recordingAccess,
        expiresAt,
      }));
  }

  approvals() {
    return this.#state.peers.map((peer) => ({
      peer: peer.id,
      name: peer.name,
      server: peer.server,
      installation: peer.installation,
      leaseExpiresAt: peer.leaseExpiresAt,
      revoked: peer.revoked,
      reapproved: peer.reapproved,
      asksAgain: peer.asksAgain,
    }));
  }

  /** True when there was such a request to decide on. */
  decide(userCode, approved) {
    const request = this.#state.requests.find(
      (entry) =>
        entry.userCode === userCode &&
        entry.decision === "pending" &&
        entry.expiresAt > this.#now(),
    );
    if (!request) return false;
    request.decision = approved ? "approved" : "refused";
    if (approved) this.#admit(request);
    this.#save(this.#state);
    return true;
  }

  /** Withdraws an approval; only the owner's new consent lets it be renewed. */
  revoke(peerId) {
    return this.#change(peerId, (peer) => {
      peer.revoked = true;
      peer.reapproved = false;
    });
  }

  /** The owner's new consent: the next renewal with a known credential succeeds once. */
  reapprove(peerId) {
    return this.#change(peerId, (peer) => {
      peer.reapproved = true;
      peer.asksAgain = false;
    });
  }

  // --- inside -------------------------------------------------------------------------------

  #admit(request) {
    const peer = {
      id: newId(),
      request: request.id,
      name: request.name,
      server: request.server,
      installation: request.installation,
      recordingAccess: request.recordingAccess,
      account: this.#account,
      generation: 0,
      renewal: null,
      leaseExpiresAt: this.#now() + this.#leaseMs,
      revoked: false,
      reapproved: false,
      asksAgain: false,
    };
    peer.tokenDigest = digest(this.#tokenOf(peer));
    this.#state.peers.push(peer);
  }

  /** Repeatable until the credential is first renewed: a lost answer can be asked for again. */
  #grant(request) {
    const peer = this.#state.peers.find((entry) => entry.request === request.id);
    return peer && peer.generation === 0 ? this.#credential(peer) : { error: "invalid_grant" };
  }

  #askOwnerAgain(peer) {
    peer.asksAgain = true;
    this.#save(this.#state);
    return { error: "reapproval_required" };
  }

  #isRepeat(peer, operation) {
    const { renewal } = peer;
    const age = renewal && this.#now() - renewal.at;
    return (
      renewal !== null && renewal.operation === operation && age <= kRepeatableMs && !peer.revoked
    );
  }

  #tokenOf(peer) {
    return deriveToken(
      this.#state.secret,
      peer.id,
      peer.generation,
      peer.renewal ? peer.renewal.operation : "",
    );
  }

  #credential(peer) {
    return { token: this.#tokenOf(peer), ...this.#describe(peer) };
  }

  #describe({ id, server, installation, account, leaseExpiresAt }) {
    return { peer: id, server, installation, account, leaseExpiresAt };
  }

  #peerByToken(token) {
    const wanted = digest(token);
    return this.#state.peers.find((entry) => entry.tokenDigest === wanted);
  }

  #change(peerId, edit) {
    const peer = this.#state.peers.find((entry) => entry.id === peerId);
    if (!peer) return false;
    edit(peer);
    this.#save(this.#state);
    return true;
  }

  #freshUserCode() {
    const taken = new Set(this.#state.requests.map((entry) => entry.userCode));
    let code = newUserCode();
    while (taken.has(code)) code = newUserCode();
    return code;
  }

  #forgetExpiredRequests() {
    this.#state.requests = this.#state.requests.filter((entry) => entry.expiresAt > this.#now());
  }
}
