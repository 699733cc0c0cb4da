// The application folder: server, shared helpers and runtime, with a manifest that names its
// version and every file by size and SHA-256, so that a copy can be proved whole.

import crypto from "node:crypto";
import fs from "node:fs";
import path from "node:path";
import { makePrivateFolder, readJsonObject, syncFolder, writePrivateJson } from "./files.mjs";
import { isSupportedRuntime } from "./runtime.mjs";

const kManifestSizeLimit = 1024 * 1024;
const kBlock = 1024 * 1024;

/** The version that the bundle carries. */
export function bundleVersion(bundle) {
  const { version } = readJsonObject(bundle.manifestFile);
  if (!/^[0-9]+\.[0-9]+\.[0-9]+$/.test(version)) throw new Error("bundle without a version");
  return version;
}

/** Bytes that the application folder `app` takes when it is made from this bundle. */
export function applicationSize(bundle, app) {
  return sourcesOf(bundle, app).reduce((sum, source) => sum + fs.statSync(source.from).size, 0);
}

/** Fills the new folder `app` from the bundle; when this returns, all of it is on the disk. */
export function copyApplication(bundle, app) {
  const version = bundleVersion(bundle);
  makePrivateFolder(app.appFolder);
  const files = sourcesOf(bundle, app).map(({ from, to, mode }) => {
    makePrivateFolder(path.dirname(to));
    copyDurably(from, to, mode);
    return { path: path.relative(app.appFolder, to), ...fingerprint(from) };
  });
  foldersBelow(app.appFolder).forEach(syncFolder);
  writePrivateJson(app.appManifestFile, { version, files });
  syncFolder(path.dirname(app.appFolder));
}

/** Is `app` complete, unchanged since it was copied, and does its runtime run? */
export async function isSoundApplication(app) {
  return isUnchanged(app) && (await isSupportedRuntime(app.runtimeFile));
}

/** The version of the application in `app`; null when it is not there or too damaged to tell. */
export function applicationVersion(app) {
  return readManifest(app)?.version ?? null;
}

function readManifest(app) {
  try {
    return readJsonObject(app.appManifestFile, kManifestSizeLimit);
  } catch {
    return null;
  }
}

function isUnchanged(app) {
  try {
    return readManifest(app).files.every((file) => {
      const { size, sha256 } = fingerprint(path.join(app.appFolder, file.path));
      return size === file.size && sha256 === file.sha256;
    });
  } catch {
    return false;
  }
}

function sourcesOf(bundle, app) {
  const fromFolder = (source, target) =>
    filesBelow(source).map((name) => ({
      from: path.join(source, name),
      to: path.join(target, name),
      mode: 0o600,
    }));
  return [
    ...fromFolder(bundle.libraryFolder, app.libraryFolder),
    ...fromFolder(bundle.serverFolder, app.serverFolder),
    { from: bundle.runtimeFile, to: app.runtimeFile, mode: 0o700 },
  ];
}

function filesBelow(folder) {
  return fs
    .readdirSync(folder, { recursive: true, withFileTypes: true })
    .filter((entry) => entry.isFile())
    .map((entry) => path.relative(folder, path.join(entry.parentPath, entry.name)))
    .sort();
}

function foldersBelow(folder) {
  return fs
    .readdirSync(folder, { recursive: true, withFileTypes: true })
    .filter((entry) => entry.isDirectory())
    .map((entry) => path.join(entry.parentPath, entry.name));
}

function copyDurably(from, to, mode) {
  // Shares the blocks instead of copying them where the file system can; a runtime is large.
  fs.copyFileSync(from, to, fs.constants.COPYFILE_EXCL | fs.constants.COPYFILE_FICLONE);
  fs.chmodSync(to, mode);
  const descriptor = fs.openSync(to, "r");
  try {
    fs.fsyncSync(descriptor);
  } finally {
    fs.closeSync(descriptor);
  }
}

function fingerprint(file) {
  const hash = crypto.createHash("sha256");
  const block = Buffer.allocUnsafe(kBlock);
  const descriptor = fs.openSync(file, "r");
  try {
    let size = 0;
    for (;;) {
      const count = fs.readSync(descriptor, block, 0, block.length, null);
      if (count === 0) return { size, sha256: hash.digest("hex") };
      hash.update(block.subarray(0, count));
      size += count;
    }
  } finally {
    fs.closeSync(descriptor);
  }
}
