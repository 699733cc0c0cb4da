// An approval that was asked for and is not decided yet, config/enrollment.json. It outlives the
// script, so that closing the setup window does not waste the owner's decision.
//   { version, service, server, installation, deviceCode, userCode,
//     intervalMs, nextPollAt, expiresAt }

import fs from "node:fs";
import { isPrivateFile, readJsonObject, removeDurably, writePrivateJson } from "../lib/files.mjs";

const kVersion = 1;
const kTexts = ["service", "server", "installation", "deviceCode", "userCode"];
const kTimes = ["intervalMs", "nextPollAt", "expiresAt"];

/** The request that this installation waits for; null when there is none, or it has lapsed. */
export function readPendingRequest(layout, { approvalOrigin, origin, installationId }, now) {
  const pending = readStored(layout);
  const isOurs =
    pending?.service === approvalOrigin &&
    pending.server === origin &&
    pending.installation === installationId;
  return isOurs && pending.expiresAt > now ? pending : null;
}

export function savePendingRequest(layout, pending) {
  writePrivateJson(layout.enrollmentFile, { ...pending, version: kVersion });
}

export function dropPendingRequest(layout) {
  if (fs.existsSync(layout.enrollmentFile)) removeDurably(layout.enrollmentFile);
}

/** A clock that was set back must not make the wait longer than the interval asked for. */
export function isPollDue({ nextPollAt, intervalMs }, now) {
  return now >= nextPollAt || nextPollAt - now > intervalMs;
}

function readStored(layout) {
  try {
    const stored = isPrivateFile(layout.enrollmentFile)
      ? readJsonObject(layout.enrollmentFile)
      : null;
    const whole =
      stored?.version === kVersion &&
      kTexts.every((name) => typeof stored[name] === "string") &&
      kTimes.every((name) => Number.isSafeInteger(stored[name]));
    return whole ? stored : null;
  } catch {
    return null;
  }
}
