// Where the approval service keeps its book between runs: one private JSON file, replaced whole.

import path from "node:path";
import { makePrivateFolder, readJsonObject, writePrivateJson } from "../desktop/lib/files.mjs";
import { emptyState } from "./ledger.mjs";

const kSizeLimit = 16 * 1024 * 1024;

/** The saved state, or a new one that is saved at once; throws when the file is damaged. */
export function loadState(file) {
  const saved = readJsonObject(file, kSizeLimit);
  if (saved !== null) return checked(saved);
  makePrivateFolder(path.dirname(file));
  const state = emptyState();
  writePrivateJson(file, state);
  return state;
}

export const saverFor = (file) => (state) => writePrivateJson(file, state);

function checked(state) {
  const known = state.version === 1 && typeof state.secret === "string";
  if (!known || !Array.isArray(state.requests) || !Array.isArray(state.peers)) {
    throw new Error("not a state file of this service");
  }
  return state;
}
