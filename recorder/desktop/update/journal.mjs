// The update journal, update/journal.json: there while an update is under way, and what tells a
// repair how far it came. Phases:
//   "staging"    the new application is being made beside the installed one, which is untouched
//   "replacing"  the new application is proved good and takes the installed one's place
//   "restoring"  the previous application is being put back

import { readJsonObject, removeDurably, writePrivateJson } from "../lib/files.mjs";

const kJournalFormat = 1;

export function writePhase(layout, phase) {
  writePrivateJson(layout.journalFile, { format: kJournalFormat, phase });
}

/** The phase of the pending update; undefined when the journal cannot be read. */
export function readPhase(layout) {
  try {
    const { format, phase } = readJsonObject(layout.journalFile);
    return format === kJournalFormat ? phase : undefined;
  } catch {
    return undefined;
  }
}

export function closeJournal(layout) {
  removeDurably(layout.journalFile);
}
