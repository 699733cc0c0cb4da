// What the user asked to have installed, judged before anything is touched.

import path from "node:path";
import { isInstalled } from "../lib/installation.mjs";
import { isUsablePath, layoutOf } from "../lib/layout.mjs";
import { refuse } from "../lib/reply.mjs";
import { isRetention, parseOrigin } from "../lib/settings.mjs";

const kPayloadSizeLimit = 65536;

/** { layout, storage, origin, retentionDays } from the payload on `input`, read to its end. */
export async function readRequest(input) {
  const payload = await readPayload(input);
  const members = ["home", "storage", "origin", "retentionDays"];
  if (!members.every((name) => typeof payload?.[name] === "string")) refuse("bundle_setup_failed");
  if (!isUsablePath(payload.home)) refuse("bundle_setup_failed");

  const layout = layoutOf(payload.home);
  if (isInstalled(layout)) refuse("existing_installation");
  return {
    layout,
    origin: requireOrigin(payload.origin),
    retentionDays: requireRetention(payload.retentionDays),
    storage: requireStoragePath(payload.storage),
  };
}

async function readPayload(input) {
  const chunks = [];
  let length = 0;
  for await (const chunk of input) {
    length += chunk.length;
    // Read on to the end all the same: a writer whose reader leaves early would be cut off.
    if (length <= kPayloadSizeLimit) chunks.push(chunk);
  }
  if (length > kPayloadSizeLimit) refuse("bundle_setup_failed");
  const text = new TextDecoder("utf-8", { fatal: true }).decode(Buffer.concat(chunks));
  return JSON.parse(text);
}

// An installation without an origin could only be completed by hand in its settings file, because
// no form asks for the origin later: better to ask for it now.
function requireOrigin(text) {
  if (text === "") refuse("origin_required");
  return parseOrigin(text) ?? refuse("bundle_setup_failed");
}

function requireRetention(text) {
  const days = /^[0-9]{1,4}$/.test(text) ? Number(text) : NaN;
  return isRetention(days) ? days : refuse("invalid_retention");
}

function requireStoragePath(text) {
  if (!isUsablePath(text)) refuse("unsafe_storage");
  return path.resolve(text);
}
