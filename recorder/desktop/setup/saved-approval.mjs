// The saved account approval, config/account.json:
//   { version, service, token, leaseExpiresAt, renewal: { operation } | null,
//     scope: { peer, server, installation, account } }
// The scope says what the credential is for; it is used for nothing else.

import { isPresent, isPrivateFile, readJsonObject, writePrivateJson } from "../lib/files.mjs";

const kVersion = 1;
const kScopeMembers = ["peer", "server", "installation", "account"];

export function isApprovalSaved(layout) {
  return isPresent(layout.accountFile);
}

/** The saved approval; null when there is none that could be used. */
export function readApproval(layout) {
  try {
    const saved = isPrivateFile(layout.accountFile) ? readJsonObject(layout.accountFile) : null;
    return saved !== null && isWhole(saved) ? saved : null;
  } catch {
    return null;
  }
}

/** Saves what the approval service at `service` granted. */
export function saveGrant(layout, service, { token, leaseExpiresAt, ...facts }) {
  saveApproval(layout, {
    version: kVersion,
    service,
    token,
    leaseExpiresAt,
    renewal: null,
    scope: scopeOf(facts),
  });
}

export function saveApproval(layout, approval) {
  writePrivateJson(layout.accountFile, approval);
}

/** Was this approval given to this installation at this address, by this approval service? */
export function isForInstallation({ service, scope }, { approvalOrigin, origin, installationId }) {
  return (
    service === approvalOrigin && scope.server === origin && scope.installation === installationId
  );
}

export function hasScope({ scope }, facts) {
  return kScopeMembers.every((member) => scope[member] === facts[member]);
}

function scopeOf(facts) {
  return Object.fromEntries(kScopeMembers.map((member) => [member, facts[member]]));
}

function isWhole({ version, service, token, leaseExpiresAt, renewal, scope }) {
  const operation = renewal?.operation;
  return (
    version === kVersion &&
    [service, token].every((value) => typeof value === "string") &&
    Number.isSafeInteger(leaseExpiresAt) &&
    (renewal === null || typeof operation === "string") &&
    kScopeMembers.every((member) => typeof scope?.[member] === "string")
  );
}
