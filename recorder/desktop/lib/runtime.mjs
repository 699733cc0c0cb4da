// Which Node runtimes the recorder accepts.

import { execFile } from "node:child_process";
import { promisify } from "node:util";

const kOldestMajorVersion = 22;
const kAnswerLimit = 20000; // milliseconds

/** Does the executable `file` start, and is it a Node that is new enough? */
export async function isSupportedRuntime(file) {
  try {
    const { stdout } = await promisify(execFile)(file, ["--version"], {
      timeout: kAnswerLimit,
      killSignal: "SIGKILL",
    });
    return isSupportedVersion(stdout.trim());
  } catch {
    return false;
  }
}

/** `version` as Node writes it: "v22.1.0". */
export function isSupportedVersion(version) {
  const match = /^v([1-9][0-9]{0,3})\.[0-9]+\.[0-9]+$/.exec(version);
  return match !== null && Number(match[1]) >= kOldestMajorVersion;
}
