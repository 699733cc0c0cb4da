// Ends the work of a script in the middle.

import assert from "node:assert/strict";
import { spawn } from "node:child_process";
import { once } from "node:events";
import path from "node:path";
import { fileURLToPath } from "node:url";

const kEndBeforeStep = fileURLToPath(new URL("end-before-step.mjs", import.meta.url));

/**
 * Calls `name(argument)` of a module below the bundle's desktop folder in a process that is killed
 * ahead of `step`.
 */
export async function crashBeforeStep(resources, { module, name, argument, step }) {
  const file = path.join(resources, "desktop", module);
  const parameters = [kEndBeforeStep, file, name, JSON.stringify(argument), step];
  const child = spawn(process.execPath, parameters, { stdio: "ignore" });
  const [, signal] = await once(child, "exit");
  assert.equal(signal, "SIGKILL", `was not cut off before ${step}`);
}
