// The recording folder: one small segment per start of the server, and the list of what is there.

import fs from "node:fs";
import path from "node:path";

const kSegmentSuffix = ".segment";

/** Adds a segment that starts now. Existing recordings are never touched. */
export function writeSegment(storage) {
  const startedAt = new Date().toISOString();
  const name = `${startedAt.replaceAll(":", "-")}-${process.pid}${kSegmentSuffix}`;
  const content = `${JSON.stringify({ startedAt, frames: 0 })}\n`;
  fs.writeFileSync(path.join(storage, name), content, { flag: "wx", mode: 0o600 });
}

/** Regular files in the folder, newest first: { name, size, modified }. */
export function listRecordings(storage) {
  return fs
    .readdirSync(storage, { withFileTypes: true })
    .filter((entry) => entry.isFile() && !entry.name.startsWith("."))
    .map(({ name }) => ({ name, facts: factsOf(path.join(storage, name)) }))
    .filter(({ facts }) => facts !== undefined)
    .map(({ name, facts }) => ({ name, size: facts.size, modified: facts.mtime }))
    .sort((one, other) => other.modified - one.modified || (one.name < other.name ? 1 : -1));
}

// Nothing, for a file that was removed since it was listed.
const factsOf = (file) => fs.statSync(file, { throwIfNoEntry: false });
