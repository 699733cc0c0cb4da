// The installation's own settings, config/settings.json, and the rules for each value.

import { isPrivateFile, readJsonObject } from "./files.mjs";
import { isUsablePath } from "./layout.mjs";
import { refuse } from "./reply.mjs";

export const kDefaultPort = 3000;
export const kDefaultApprovalOrigin = "http://127.0.0.1:3999";
const kHttpsPort = 443;

/**
 * { origin, port, storage, retentionDays, approvalOrigin }. An origin that is absent or empty reads
 * as "": the recorder cannot be used before one is configured, but everything else about it is in
 * order. Refuses with "configuration_invalid" when a value breaks its rule or the file is not
 * private.
 */
export function readSettings(layout) {
  let stored = null;
  try {
    if (isPrivateFile(layout.settingsFile)) stored = readJsonObject(layout.settingsFile);
  } catch {
    stored = null;
  }
  const settings = stored === null ? null : parseSettings(stored);
  return settings ?? refuse("configuration_invalid");
}

function parseSettings(stored) {
  const originText = stored.DVR_PUBLIC_ORIGIN ?? "";
  const origin = originText === "" ? "" : parseOrigin(originText);
  const port = stored.DVR_PORT ?? kDefaultPort;
  const storage = stored.DVR_STORAGE;
  const retentionDays = stored.DVR_RETENTION_DAYS;
  const approvalOrigin = parseLoopbackOrigin(stored.DVR_APPROVAL_ORIGIN ?? kDefaultApprovalOrigin);
  const valid =
    origin !== null &&
    isPort(port) &&
    isUsablePath(storage) &&
    isRetention(retentionDays) &&
    approvalOrigin !== null;
  return valid ? { origin, port, storage, retentionDays, approvalOrigin } : null;
}

export function storedSettings({ origin, port, storage, retentionDays }) {
  return {
    DVR_PUBLIC_ORIGIN: origin,
    DVR_PORT: port,
    DVR_STORAGE: storage,
    DVR_RETENTION_DAYS: retentionDays,
  };
}

/** The https origin that `text` spells, in its normal form; null when it is anything else. */
export function parseOrigin(text) {
  // The URL parser forgives white space and backslashes; an address people must trust gets no such
  // favours.
  if (typeof text !== "string" || !/^https:\/\/[^\s\\/?#@]+\/?$/i.test(text)) return null;
  try {
    return new URL(text).origin;
  } catch {
    return null;
  }
}

/** { host, port } that an https origin stands for; the host without the brackets of a literal. */
export function originAddress(origin) {
  const { hostname, port } = new URL(origin);
  return {
    host: hostname.replace(/^\[(.*)\]$/, "$1"),
    port: port === "" ? kHttpsPort : Number(port),
  };
}

/** The origin of a service on this computer, null for any other: it is spoken to in the clear. */
export function parseLoopbackOrigin(text) {
  const pattern = /^http:\/\/(127\.0\.0\.1|localhost|\[::1\])(:[0-9]{1,5})?\/?$/i;
  if (typeof text !== "string" || !pattern.test(text)) return null;
  return URL.canParse(text) ? new URL(text).origin : null;
}

export function isPort(value) {
  return Number.isInteger(value) && value >= 1 && value <= 65535;
}

export function isRetention(value) {
  return Number.isInteger(value) && value >= 1 && value <= 3650;
}
