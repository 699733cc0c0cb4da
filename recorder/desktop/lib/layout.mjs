// Every path of the recorder has its one home here: the files of an installation home, and those of
// the bundle that the scripts run from. No other module joins path components.
//
// Server processes find these helpers at the same relative place as in the source tree: an
// installed application folder carries a copy in app/desktop/lib, next to app/server.

import path from "node:path";
import { fileURLToPath } from "node:url";

/** Paths of the installation in `home`, an absolute folder. */
export function layoutOf(home) {
  const folder = path.normalize(home).replace(/(?<=.)\/+$/, "");
  const inHome = (...parts) => path.join(folder, ...parts);
  return Object.freeze({
    home: folder,
    // Its presence is what makes the folder an installation; written last.
    marker: inHome("installation.json"),
    // The marker of an installation that is still being made.
    draftMarker: inHome("installation.draft.json"),
    // The one place inside the home where recordings may live.
    ownStorageFolder: inHome("data"),

    configFolder: inHome("config"),
    settingsFile: inHome("config", "settings.json"),
    tlsFile: inHome("config", "tls.json"),
    tlsCertificateFile: inHome("config", "tls-certificate.pem"),
    tlsKeyFile: inHome("config", "tls-key.pem"),
    tlsApprovedCAFile: inHome("config", "tls-approved-ca.pem"),
    accountFile: inHome("config", "account.json"),
    // An approval that was asked for and is not decided yet.
    enrollmentFile: inHome("config", "enrollment.json"),
    loginFile: inHome("config", "login.json"),

    runFolder: inHome("run"),
    pidFile: inHome("run", "server.json"),
    gatewayPidFile: inHome("run", "gateway.json"),
    serviceLockFile: inHome("run", "service.lock"),
    setupLockFile: inHome("run", "setup.lock"),
    updateLockFile: inHome("run", "update.lock"),

    ...appLayout(inHome("app")),

    updateFolder: inHome("update"),
    journalFile: inHome("update", "journal.json"),
    stagedAppFolder: inHome("update", "staged"),
    previousAppFolder: inHome("update", "previous"),
  });
}

/** Paths inside one application folder, be it active, staged or kept for rollback. */
export function appLayout(appFolder) {
  return Object.freeze({
    appFolder,
    appManifestFile: path.join(appFolder, "manifest.json"),
    libraryFolder: path.join(appFolder, "desktop", "lib"),
    serverFolder: path.join(appFolder, "server"),
    serverFile: path.join(appFolder, "server", "server.mjs"),
    gatewayFile: path.join(appFolder, "server", "gateway.mjs"),
    runtimeFile: path.join(appFolder, "runtime", "bin", "node"),
  });
}

/** Paths inside the recording folder. */
export function storageLayout(storage) {
  return Object.freeze({
    // Whose recordings these are, once the recorder was approved for an account.
    ownerFile: path.join(storage, ".owner.json"),
  });
}

/** Paths of the bundle that this module was loaded from. */
export function bundleLayout() {
  const resources = fileURLToPath(new URL("../..", import.meta.url)).replace(/\/+$/, "");
  return Object.freeze({
    resources,
    manifestFile: path.join(resources, "bundle", "manifest.json"),
    libraryFolder: path.join(resources, "desktop", "lib"),
    serverFolder: path.join(resources, "bundle", "server"),
    runtimeFile: path.join(resources, "bundle", "runtime", "bin", "node"),
  });
}

/** A path that a user or another program handed over: absolute, printable, no double quote. */
export function isUsablePath(text) {
  return typeof text === "string" && path.isAbsolute(text) && !/["\u0000-\u001f\u007f]/.test(text);
}

/** Is `inner` the folder `outer` or somewhere below it? Both absolute. */
export function isWithin(inner, outer) {
  const relative = path.relative(outer, inner);
  return relative === "" || (relative.split(path.sep)[0] !== ".." && !path.isAbsolute(relative));
}
