// Makes an installation. It exists from the moment its marker gets its name, which is the last
// step: cut off anywhere before, there is a draft that the next attempt clears away.

import crypto from "node:crypto";
import { bundleVersion, copyApplication, isSoundApplication } from "../lib/application.mjs";
import {
  makePrivateFolder,
  removeDurably,
  removeTemporaries,
  renameDurably,
  syncFolder,
  writePrivateJson,
} from "../lib/files.mjs";
import { isInstalled, newMarker } from "../lib/installation.mjs";
import { appLayout, bundleLayout } from "../lib/layout.mjs";
import { waitForLock } from "../lib/lock.mjs";
import { refuse } from "../lib/reply.mjs";
import { isSupportedRuntime } from "../lib/runtime.mjs";
import { kDefaultPort, storedSettings } from "../lib/settings.mjs";
import { runSteps } from "../lib/steps.mjs";
import { makePrivate, requireUsableHome, requireUsableStorage } from "./folders.mjs";

const kLockLimit = 120000; // milliseconds; another installation into the same home takes less

export const kInstallSteps = [
  { name: "write-draft", run: writeDraft },
  { name: "clear-leftovers", run: clearLeftovers },
  { name: "make-folders", run: makeFolders },
  { name: "copy-application", run: stageApplication },
  { name: "check-application", run: checkApplication },
  { name: "write-settings", run: writeSettings },
  { name: "place-application", run: placeApplication },
  { name: "complete", run: ({ layout }) => renameDurably(layout.draftMarker, layout.marker) },
];

/** Installs what `request` asks for; `beforeStep(name)` is called ahead of every step. */
export async function install(request, beforeStep) {
  const { layout } = request;
  const bundle = bundleLayout();
  requireUsableHome(layout);
  requireUsableStorage(layout, request.storage);
  if (!(await isSupportedRuntime(bundle.runtimeFile))) refuse("runtime_check_failed");

  makePrivate(layout.home);
  makePrivateFolder(layout.runFolder);
  const lock = await waitForLock(layout.updateLockFile, kLockLimit);
  if (lock === null) refuse("bundle_setup_failed");
  try {
    // Another installation may have come first while this one waited.
    if (isInstalled(layout)) refuse("existing_installation");
    requireUsableHome(layout);
    requireUsableStorage(layout, request.storage);
    await runSteps(kInstallSteps, { ...request, bundle }, beforeStep);
  } finally {
    lock.release();
  }
  return { ok: true, code: "installed_stopped", node: layout.runtimeFile };
}

const staged = (layout) => appLayout(layout.stagedAppFolder);

function writeDraft({ bundle, layout, storage }) {
  const marker = newMarker({
    version: bundleVersion(bundle),
    installationId: crypto.randomUUID(),
    storage,
    runtime: layout.runtimeFile,
  });
  writePrivateJson(layout.draftMarker, marker);
}

function clearLeftovers({ layout }) {
  removeDurably(layout.appFolder);
  removeDurably(layout.configFolder);
  removeDurably(layout.updateFolder);
  removeTemporaries(layout.home);
}

function makeFolders({ layout, storage }) {
  for (const folder of [layout.configFolder, layout.updateFolder, storage]) makePrivate(folder);
  syncFolder(layout.home);
}

function stageApplication({ bundle, layout }) {
  copyApplication(bundle, staged(layout));
}

async function checkApplication({ layout }) {
  if (!(await isSoundApplication(staged(layout)))) refuse("runtime_check_failed");
}

function writeSettings({ layout, origin, storage, retentionDays }) {
  const settings = storedSettings({ origin, port: kDefaultPort, storage, retentionDays });
  writePrivateJson(layout.settingsFile, settings);
}

function placeApplication({ layout }) {
  renameDurably(layout.stagedAppFolder, layout.appFolder);
}
