// A bundle staged for the tests of one file.

import { execFileSync } from "node:child_process";
import fs from "node:fs";
import os from "node:os";
import path from "node:path";
import { after } from "node:test";
import { fileURLToPath } from "node:url";

const kStageResources = fileURLToPath(new URL("../../scripts/stage-resources", import.meta.url));

// Only after all tests of the file: a test's processes are found through files in its folder.
const folders = [];
after(() => folders.forEach((folder) => fs.rmSync(folder, { recursive: true, force: true })));

/** A folder that is gone when the tests of this file are. */
export function temporaryFolder() {
  const folder = fs.realpathSync(fs.mkdtempSync(path.join(os.tmpdir(), "recorder-test-")));
  folders.push(folder);
  return folder;
}

/**
 * Stages a bundle and returns its resource folder. Its runtime is a launcher that becomes the Node
 * of these tests, so that the many installations need no hundred megabytes each; `runtime` names
 * another.
 */
export function stageBundle({ version = "1.0.0", runtime = launcher(process.execPath) } = {}) {
  const resources = path.join(temporaryFolder(), "Resources");
  execFileSync(kStageResources, [resources, runtime, version]);
  return resources;
}

export function launcher(node) {
  return writeExecutable(`exec '${node}' "$@"`);
}

/** An executable that runs `commands` in a shell. */
export function writeExecutable(commands) {
  const file = path.join(temporaryFolder(), "node");
  fs.writeFileSync(file, `#!/bin/sh\n${commands}\n`, { mode: 0o755 });
  return file;
}
