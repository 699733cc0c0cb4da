// What must survive: the two settings, the recorder's configuration and its recordings.

import assert from "node:assert/strict";
import { createHash } from "node:crypto";
import fs from "node:fs";
import path from "node:path";
import { settingsOf } from "../steps/installing.mjs";

const kSettingsFile = "Veltrix Home DVR.plist";

// The file as GNUstep writes it, from the first byte to the last: half of one does not match.
const kEntry = "    <key>([^<]*)</key>\n    <string>([^<]*)</string>\n";
const kWholeFile = new RegExp(
  '^<\\?xml version="1.0" encoding="UTF-8"\\?>\n<!DOCTYPE plist [^>]*>\n' +
    `<plist version="1.0">\n<dict>\n(?:${kEntry})*</dict>\n</plist>\n?$`,
);

/** What the next launch will find: { installationHome, nodeExecutable }, without what is absent. */
export function storedSettings(scratch) {
  const file = scratch.path("Defaults", kSettingsFile);
  if (!fs.existsSync(file)) return {};
  const text = fs.readFileSync(file, "utf8");
  assert.ok(kWholeFile.test(text), `a settings file that is not whole:\n${text}`);
  return Object.fromEntries(
    [...text.matchAll(new RegExp(kEntry, "g"))].map(([, key, value]) => [key, value]),
  );
}

/** Of every file below the folders, the digest of its bytes by its path. */
function digests(scratch, folders) {
  const files = folders.flatMap((folder) => scratch.files(folder));
  return new Map(
    files.map(({ file, bytes }) => [file, createHash("sha256").update(bytes).digest("hex")]),
  );
}

/** The recorder's files that nobody but the recorder may touch. */
export class Kept {
  #scratch;
  #folders;
  #digests;

  constructor(scratch, recorders) {
    this.#scratch = scratch;
    this.#folders = recorders.flatMap(({ layout, storage }) => [layout.configFolder, storage]);
    this.#digests = digests(scratch, this.#folders);
  }

  /**
   * Nothing is missing or changed, and what is new is what `mayAdd` allows; returns the new files.
   */
  verify(mayAdd) {
    const now = digests(this.#scratch, this.#folders);
    const added = [...now.keys()].filter((file) => !this.#digests.has(file));
    for (const [file, digest] of this.#digests) {
      assert.ok(now.has(file), `${file} has gone`);
      assert.equal(now.get(file), digest, `${file} has other bytes`);
    }
    for (const file of added) assert.ok(mayAdd(file), `${file} has appeared`);
    return added;
  }
}

/** A recording that a start of the server adds. */
export function isRecordingOf(recorders) {
  return (file) =>
    recorders.some(({ storage }) => path.dirname(file) === storage) && file.endsWith(".segment");
}

/** A configured gateway is there whole or not at all, once nobody is at work on it any more. */
export function verifyTls({ layout }, { certificate, key }) {
  if (!fs.existsSync(layout.tlsFile)) return;
  const same = (one, other) => assert.deepEqual(fs.readFileSync(one), fs.readFileSync(other));
  same(layout.tlsCertificateFile, certificate);
  same(layout.tlsKeyFile, key);
  JSON.parse(fs.readFileSync(layout.tlsFile, "utf8"));
}

/** The recorder itself can still read what it is configured with. */
export function verifyReadable({ layout }) {
  assert.equal(typeof settingsOf(layout).DVR_PORT, "number");
}

/**
 * What crashed companions have left beside the settings and among the running instances. The next
 * launch clears away what is not quite fresh, so that there are never more than a few.
 */
export function leftovers(scratch) {
  const kinds = [
    [scratch.path("Defaults"), (name) => name !== kSettingsFile && name !== ".lck"],
    [scratch.path("Defaults", ".lck"), () => true],
    [scratch.path("temporary"), (name) => name.endsWith(".lock")],
    [scratch.path("run"), (name) => /[0-9]-[0-9]+/.test(name)],
  ];
  return kinds.flatMap(([folder, counts]) =>
    fs.existsSync(folder)
      ? fs
          .readdirSync(folder, { recursive: folder === scratch.path("run") })
          .filter((name) => counts(name))
          .map((name) => path.join(folder, name))
      : [],
  );
}
