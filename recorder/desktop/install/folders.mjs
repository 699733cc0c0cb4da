// May these two folders become an installation and its recording storage? Looks only, except for
// `makePrivate`.

import fs from "node:fs";
import path from "node:path";
import { isPrivateFolder, isTemporaryName, makePrivateFolder } from "../lib/files.mjs";
import { isWithin } from "../lib/layout.mjs";
import { refuse } from "../lib/reply.mjs";

// Left behind by the file manager wherever somebody has looked.
const kIgnoredNames = new Set([".DS_Store"]);

/** Refuses a home that holds anything but what an interrupted installation left there. */
export function requireUsableHome(layout) {
  if (factsOf(layout.home) === undefined) return;
  if (!isOwnFolder(layout.home)) refuse("bundle_setup_failed");
  const interrupted = factsOf(layout.draftMarker) !== undefined;
  const expected = new Set([layout.runFolder, layout.ownStorageFolder]);
  const foreign = entriesOf(layout.home).filter(
    (entry) => !expected.has(entry) && !isTemporaryName(entry),
  );
  if (foreign.length > 0 && !interrupted) refuse("bundle_setup_failed");
}

/** Refuses recording storage that is not an empty folder of its own. */
export function requireUsableStorage(layout, storage) {
  const realHome = realPath(layout.home);
  const realStorage = realPath(storage);
  const ownFolder = realStorage === realPath(layout.ownStorageFolder);
  const separate = !isWithin(realStorage, realHome) && !isWithin(realHome, realStorage);
  if (!separate && !ownFolder) refuse("unsafe_storage");

  if (factsOf(storage) === undefined) return;
  if (!isOwnFolder(storage)) refuse("unsafe_storage");
  if (entriesOf(storage).length > 0) refuse("storage_not_empty");
}

/**
 * Creates `folder`, or closes it to other accounts when it exists: a folder made in a file dialog
 * is readable by all, and here it was found to be ours.
 */
export function makePrivate(folder) {
  makePrivateFolder(folder);
  if (!isPrivateFolder(folder)) fs.chmodSync(folder, 0o700);
}

const factsOf = (target) => fs.lstatSync(target, { throwIfNoEntry: false });

// Whoever else may write into a folder may have put anything there, now or a moment from now.
function isOwnFolder(folder) {
  const facts = factsOf(folder);
  return facts.isDirectory() && facts.uid === process.getuid() && (facts.mode & 0o022) === 0;
}

function entriesOf(folder) {
  return fs
    .readdirSync(folder)
    .filter((name) => !kIgnoredNames.has(name))
    .map((name) => path.join(folder, name));
}

/** `target` with the links in its existing part followed; the rest need not exist yet. */
function realPath(target) {
  try {
    // The native one also settles upper and lower case where the file system ignores them.
    return fs.realpathSync.native(target);
  } catch (error) {
    const parent = path.dirname(target);
    if (error.code !== "ENOENT" || parent === target) throw error;
    return path.join(realPath(parent), path.basename(target));
  }
}
