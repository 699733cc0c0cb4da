// The self-test that automated checks start, and the command lines that must not start it.

import assert from "node:assert/strict";
import fs from "node:fs";
import { Program, runProgram } from "../program.mjs";

const kPassed =
  '{"nativeWindow":true,"menuEntries":true,"hideRestore":true,"missingRuntimeRejected":true,' +
  '"serviceStarted":false}\n';
const kHome = "Library/Application Support/VeltrixHomeDVR";

export async function runSelfTest(tour) {
  const { journal, scratch, step } = tour;

  await step("Self-test", async () => {
    const picture = journal.file("window");
    const ended = await runProgram(tour, ["--qa-smoke", picture]);
    assert.deepEqual(ended, { status: 0, output: kPassed });
    assert.deepEqual(sizeOfPng(picture), { width: 760, height: 640 });
    assertNothingStored(scratch);
    return kPassed.trim();
  });

  await step("Self-test with a path that cannot be written", async () => {
    const path = scratch.path("no-such-folder", "window.png");
    assert.deepEqual(await runProgram(tour, ["--qa-smoke", path]), { status: 2, output: "" });
  });

  const picture = scratch.path("unasked.png");
  for (const args of [["--qa-smoke"], ["--qa-smoke", picture, "more"], [picture, "--qa-smoke"]]) {
    const words = args.map((arg) => (arg === picture ? "PATH" : arg)).join(" ");
    await step(`A normal start with "${words}"`, async () => {
      const program = await Program.start(tour, args);
      const sentence = await program.sentence();
      assert.equal(sentence, "Service status unknown");
      assert.equal(await program.text("Installation folder"), scratch.path("home", kHome));
      await program.quit();
      assert.equal(program.output, "");
      assert.ok(!fs.existsSync(picture));
      return sentence;
    });
  }
}

// The image header follows the signature (PNG specification, section 5.2 and 11.2.2).
function sizeOfPng(file) {
  const bytes = fs.readFileSync(file);
  assert.equal(bytes.toString("latin1", 0, 8), "\x89PNG\r\n\x1a\n");
  return { width: bytes.readUInt32BE(16), height: bytes.readUInt32BE(20) };
}

function assertNothingStored(scratch) {
  for (const { bytes } of scratch.files(scratch.path("Defaults"))) {
    assert.ok(!bytes.includes("installationHome") && !bytes.includes("nodeExecutable"));
  }
}
