// The steps of an update. Each may be cut off anywhere and run again from its start, and each list
// may be taken up again from its first step.

import fs from "node:fs";
import {
  applicationVersion,
  copyApplication,
  isSoundApplication,
} from "../lib/application.mjs";
import {
  removeDurably,
  removeTemporaries,
  renameDurably,
  writePrivateJson,
} from "../lib/files.mjs";
import { requireInstallation } from "../lib/installation.mjs";
import { appLayout } from "../lib/layout.mjs";
import { closeJournal, writePhase } from "./journal.mjs";

/** Makes the new application beside the installed one. Context: { layout, bundle }. */
export const kStagingSteps = [
  { name: "open-journal", run: ({ layout }) => writePhase(layout, "staging") },
  { name: "discard-older-rollback", run: ({ layout }) => removeDurably(layout.previousAppFolder) },
  { name: "clear-leftovers", run: clearLeftovers },
  { name: "copy-application", run: stageApplication },
  { name: "check-staged", run: ({ layout }) => requireSound(staged(layout)) },
];

/** Puts the new application in the installed one's place and keeps that for rollback. */
export const kReplacingSteps = [
  { name: "commit", run: ({ layout }) => writePhase(layout, "replacing") },
  { name: "set-current-aside", run: setCurrentAside },
  { name: "activate-staged", run: activateStaged },
  { name: "check-active", run: ({ layout }) => requireSound(layout) },
  { name: "record-version", run: recordVersion },
  { name: "close-journal", run: ({ layout }) => closeJournal(layout) },
];

/** Gives up an update that has not begun to replace anything. */
export const kAbandoningSteps = [
  { name: "record-version", run: recordVersion },
  { name: "discard-staged", run: discardStaged },
  { name: "close-journal", run: ({ layout }) => closeJournal(layout) },
];

/** Puts the previous application back. */
export const kRestoringSteps = [
  { name: "open-restoring", run: ({ layout }) => writePhase(layout, "restoring") },
  { name: "discard-replacement", run: discardReplacement },
  { name: "restore-previous", run: restorePrevious },
  ...kAbandoningSteps,
];

export const staged = (layout) => appLayout(layout.stagedAppFolder);

const exists = (target) => fs.lstatSync(target, { throwIfNoEntry: false }) !== undefined;

function clearLeftovers({ layout }) {
  discardStaged({ layout });
  [layout.home, layout.updateFolder].forEach(removeTemporaries);
}

function discardStaged({ layout }) {
  removeDurably(layout.stagedAppFolder);
}

function stageApplication({ bundle, layout }) {
  copyApplication(bundle, staged(layout));
}

async function requireSound(app) {
  if (!(await isSoundApplication(app))) throw new Error("application incomplete");
}

// An older rollback copy was discarded before staging began, so a copy that is there now is the
// application which this very step set aside before it was cut off. Somebody may have deleted the
// installed application; an update then makes good for it.
function setCurrentAside({ layout }) {
  const mustMove = exists(layout.appFolder) && !exists(layout.previousAppFolder);
  if (mustMove) renameDurably(layout.appFolder, layout.previousAppFolder);
}

function activateStaged({ layout }) {
  if (exists(layout.stagedAppFolder)) renameDurably(layout.stagedAppFolder, layout.appFolder);
}

// Only with a copy to put back in its place; without one the application is still, or again, the
// previous one.
function discardReplacement({ layout }) {
  if (exists(layout.previousAppFolder)) removeDurably(layout.appFolder);
}

function restorePrevious({ layout }) {
  if (exists(layout.previousAppFolder)) renameDurably(layout.previousAppFolder, layout.appFolder);
}

// An application that was damaged before the update, and is back now, has no version to record.
function recordVersion({ layout }) {
  const marker = requireInstallation(layout);
  const version = applicationVersion(layout);
  if (version === null || version === marker.version) return;
  writePrivateJson(layout.marker, { ...marker, version });
}
