// Reading files with a limit, writing them so that a crash leaves the old or the new content whole,
// and judging whether a file is private to this account.

import crypto from "node:crypto";
import fs from "node:fs";
import path from "node:path";

const kSettingsSizeLimit = 65536;

/**
 * The bytes of a regular file; throws when it is absent, not a file, or larger than `limit`.
 * `inspect` is given the facts of the very file that is read, before any byte of it is, and may
 * throw.
 */
export function readLimited(file, limit, inspect = () => {}) {
  // Without O_NONBLOCK a named pipe put in the file's place would hold the script up for ever.
  const descriptor = fs.openSync(file, fs.constants.O_RDONLY | fs.constants.O_NONBLOCK);
  try {
    const facts = fs.fstatSync(descriptor);
    if (!facts.isFile()) throw new Error("not a regular file");
    inspect(facts);
    const buffer = Buffer.alloc(limit + 1);
    let length = 0;
    let count;
    do {
      count = fs.readSync(descriptor, buffer, length, buffer.length - length, null);
      length += count;
    } while (count > 0 && length < buffer.length);
    if (length > limit) throw new Error("file too large");
    return buffer.subarray(0, length);
  } finally {
    fs.closeSync(descriptor);
  }
}

/** The JSON object in `file`; null when there is no such file, throws for any other content. */
export function readJsonObject(file, limit = kSettingsSizeLimit) {
  let bytes;
  try {
    bytes = readLimited(file, limit);
  } catch (error) {
    if (error.code === "ENOENT") return null;
    throw error;
  }
  const value = JSON.parse(new TextDecoder("utf-8", { fatal: true }).decode(bytes));
  if (value === null || typeof value !== "object" || Array.isArray(value)) {
    throw new Error("not a JSON object");
  }
  return value;
}

/**
 * Puts `content` in place of `file`, durably and with mode 0600, or leaves the old file as it is.
 */
export function writePrivateFile(file, content) {
  const temporary = `${file}.${crypto.randomBytes(8).toString("hex")}.tmp`;
  const descriptor = fs.openSync(temporary, "wx", 0o600);
  try {
    try {
      fs.writeFileSync(descriptor, content);
      fs.fsyncSync(descriptor);
    } finally {
      fs.closeSync(descriptor);
    }
    fs.renameSync(temporary, file);
  } catch (error) {
    fs.rmSync(temporary, { force: true });
    throw error;
  }
  syncFolder(path.dirname(file));
}

export function writePrivateJson(file, value) {
  writePrivateFile(file, `${JSON.stringify(value, null, 2)}\n`);
}

/**
 * Is this the name of a file that `writePrivateFile` would have renamed, had it not been cut off?
 */
export function isTemporaryName(name) {
  return /\.[0-9a-f]{16}\.tmp$/.test(name);
}

/** Clears what cut-off writes left in `folder`; nobody may be writing there. */
export function removeTemporaries(folder) {
  for (const name of fs.readdirSync(folder).filter(isTemporaryName)) {
    fs.rmSync(path.join(folder, name), { force: true });
  }
}

/** Is there anything by this name, whatever it is? A link that leads nowhere counts. */
export function isPresent(target) {
  return fs.lstatSync(target, { throwIfNoEntry: false }) !== undefined;
}

/** Makes the last creations, renames and removals in `folder` durable. */
export function syncFolder(folder) {
  const descriptor = fs.openSync(folder, "r");
  try {
    fs.fsyncSync(descriptor);
  } finally {
    fs.closeSync(descriptor);
  }
}

/** Creates `folder` with its missing parents, private; an existing folder keeps its mode. */
export function makePrivateFolder(folder) {
  fs.mkdirSync(folder, { recursive: true, mode: 0o700 });
}

export function removeDurably(target) {
  fs.rmSync(target, { recursive: true, force: true });
  syncFolder(path.dirname(target));
}

export function renameDurably(from, to) {
  fs.renameSync(from, to);
  syncFolder(path.dirname(to));
  syncFolder(path.dirname(from));
}

/** A regular file of this account that nobody else may read or write; a link does not count. */
export function isPrivateFile(file) {
  return isPrivate(file, (facts) => facts.isFile());
}

/** A folder of this account that nobody else may enter; a link does not count. */
export function isPrivateFolder(folder) {
  return isPrivate(folder, (facts) => facts.isDirectory());
}

function isPrivate(target, hasRightKind) {
  const facts = fs.lstatSync(target, { throwIfNoEntry: false });
  if (!facts) return false;
  return hasRightKind(facts) && facts.uid === process.getuid() && (facts.mode & 0o077) === 0;
}
