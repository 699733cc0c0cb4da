// What makes a folder an installation, and whether it is in order.

import fs from "node:fs";
import { isPrivateFile, isPrivateFolder, readJsonObject } from "./files.mjs";
import { isLocked } from "./lock.mjs";
import { refuse } from "./reply.mjs";
import { isSupportedRuntime, isSupportedVersion } from "./runtime.mjs";
import { readSettings } from "./settings.mjs";

const kMarkerFormat = 1;

export function newMarker({ version, installationId, storage, runtime }) {
  return { format: kMarkerFormat, version, installationId, storage, runtime };
}

export function isInstalled(layout) {
  return fs.lstatSync(layout.marker, { throwIfNoEntry: false }) !== undefined;
}

/**
 * The marker of the installation. Refuses with "installation_not_ready" where there is none, and
 * with "configuration_invalid" where marker or folders are damaged or open to other accounts.
 */
export function requireInstallation(layout) {
  requireRunFolder(layout);
  const folders = [layout.home, layout.configFolder, layout.updateFolder];
  const sound = folders.every(isPrivateFolder) && isPrivateFile(layout.marker);
  return (sound && readMarker(layout)) || refuse("configuration_invalid");
}

/**
 * Refuses like `requireInstallation`, but asks no more of the installation than locks and process
 * records do: with anything else wrong the recorder can still be stopped.
 */
export function requireRunFolder(layout) {
  if (!isInstalled(layout)) refuse("installation_not_ready");
  if (!isPrivateFolder(layout.runFolder)) refuse("configuration_invalid");
}

function readMarker(layout) {
  try {
    const marker = readJsonObject(layout.marker);
    const members = ["version", "installationId", "storage", "runtime"];
    const whole = members.every((name) => typeof marker[name] === "string");
    return whole && marker.format === kMarkerFormat ? marker : null;
  } catch {
    return null;
  }
}

/** Refuses while an update is under way, or was interrupted and waits for repair. */
export function refuseDuringUpdate(layout) {
  if (isLocked(layout.updateLockFile)) refuse("update_in_progress");
  if (isUpdatePending(layout)) refuse("repair_pending_update");
}

export function isUpdatePending(layout) {
  return fs.lstatSync(layout.journalFile, { throwIfNoEntry: false }) !== undefined;
}

/** The settings of an installation that could be started, as far as files and runtimes can tell. */
export async function requireConfiguration(layout) {
  if (!isExecutable(layout.runtimeFile) || !fs.existsSync(layout.serverFile)) {
    refuse("installation_not_ready");
  }
  const settings = readSettings(layout);
  const sound =
    isSupportedVersion(process.version) &&
    isPrivateFolder(settings.storage) &&
    (await isSupportedRuntime(layout.runtimeFile));
  if (!sound) refuse("configuration_invalid");
  if (settings.origin === "") refuse("origin_required");
  return settings;
}

function isExecutable(file) {
  try {
    fs.accessSync(file, fs.constants.X_OK);
    return fs.statSync(file).isFile();
  } catch {
    return false;
  }
}
