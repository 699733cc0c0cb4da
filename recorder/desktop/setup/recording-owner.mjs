// Whose recordings a recording folder holds: a note inside the folder itself, so that it stays with
// the recordings when the configuration is lost or the disk moves.

import fs from "node:fs";
import { writePrivateJson } from "../lib/files.mjs";
import { storageLayout } from "../lib/layout.mjs";

/** Throws when the folder cannot be looked at: an absent disk says nothing about its recordings. */
export function areRecordingsOwned(storage) {
  fs.accessSync(storage, fs.constants.R_OK | fs.constants.X_OK);
  return fs.existsSync(storageLayout(storage).ownerFile);
}

/** Notes the owner where none is noted yet. An absent disk is no failure: it is noted later. */
export function noteRecordingOwner(storage, { account, installation }) {
  try {
    if (!areRecordingsOwned(storage)) {
      writePrivateJson(storageLayout(storage).ownerFile, { account, installation });
    }
  } catch {
    // Every later validation of the approval comes back here.
  }
}
