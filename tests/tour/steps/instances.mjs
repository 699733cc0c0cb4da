// Starting the program while it runs: the running one comes forward, the new one leaves unseen.

import assert from "node:assert/strict";
import { kSettings, Program, runProgram } from "../program.mjs";
import { eventually } from "../waiting.mjs";

export async function tryInstances(tour) {
  const { display, step } = tour;
  const program = await Program.start(tour);
  const leaves = async () => {
    assert.deepEqual(await runProgram(tour, []), { status: 0, output: "" });
  };

  await step("A second start, with another program's window in front", async () => {
    const stranger = display.coverWith("stranger", (await program.look()).window().frame);
    await eventually(() => display.isAbove("stranger", kSettings), "the stranger in front");
    await leaves();
    await eventually(() => display.isAbove(kSettings, "stranger"), "the settings window in front");
    display.photograph(tour.journal.file("before the other window goes"));
    stranger.close();
  });

  await step("A second start, with the window closed", async () => {
    const watch = await display.watchWindows();
    await program.clickClose();
    await program.expectShown(kSettings, false);
    // Seen to be gone by the watch too, so the watch is at work.
    await eventually(() => watch.unmapped().length > 0, "a watched window gone");
    await leaves();
    await program.expectShown(kSettings);
    await eventually(() => watch.mapped().length > 0, "the watched window back");
    // Neither a window nor a status item of the second one was ever on the display.
    assert.deepEqual(watch.mapped(), watch.unmapped());
    watch.close();
  });

  await program.quit();
}
