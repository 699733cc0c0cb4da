// The passwords that were typed are nowhere but in the typed field and in a hash.

import assert from "node:assert/strict";
import { allPids, commandLineOf, environmentOf } from "../processes.mjs";

/** No process, the tour's own excepted, was told one of these where others can read it. */
export function assertNoPasswordInProcesses(passwords) {
  for (const pid of allPids()) {
    const told = [...commandLineOf(pid), ...environmentOf(pid)];
    const leak = told.find((entry) => passwords.some((password) => entry.includes(password)));
    assert.equal(leak, undefined, `a password in the open, process ${pid}`);
  }
}

export async function searchForPasswords({ passwords, program, scratch, step }) {
  await step("Quit, and search for the passwords", async () => {
    assertNoPasswordInProcesses(passwords);
    await program.quit();
    const files = scratch.files();
    assert.ok(files.some(({ file }) => file.endsWith("/config/login.json")));
    assert.ok(files.some(({ file }) => file.startsWith(scratch.path("Defaults"))));
    for (const { file, bytes } of files) {
      assert.ok(!passwords.some((password) => bytes.includes(password)), `a password in ${file}`);
    }
  });
}
