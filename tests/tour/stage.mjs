// Where the program is used: a display and a home folder of their own, which go again however it
// ends. Whoever sets a stage ends with it.

import path from "node:path";
import { Display } from "./display.mjs";
import { Scratch } from "./scratch.mjs";

/**
 * Lets `act` use the program that was built into the folder `build`, and ends the process: with 0
 * when that is done, with 1 when it threw, took longer than `limit` seconds or was interrupted;
 * then `fail` is told the reason first, while everything still stands.
 */
export async function perform({ build, limit, fail }, act) {
  const scratch = new Scratch();
  let display = null;

  async function cleanUp() {
    await scratch.remove();
    display?.close();
    await display?.closed();
  }

  // The first reason to give up counts: what comes after it comes of it.
  let ending = null;
  function giveUp(error) {
    ending ??= (async () => {
      fail(error, display);
      await cleanUp();
      process.exit(1);
    })();
    return ending;
  }

  for (const signal of ["SIGINT", "SIGTERM", "SIGHUP"]) {
    process.once(signal, () => giveUp(new Error(`ended by ${signal}`)));
  }
  setTimeout(() => giveUp(new Error(`not done after ${limit} seconds`)), limit * 1000).unref();

  try {
    display = await Display.open();
    const bundle = path.resolve(build, "Veltrix Home DVR.app");
    await act({
      scratch,
      display,
      executable: path.join(bundle, "Veltrix Home DVR"),
      bundledRuntime: path.join(bundle, "Resources/bundle/runtime/bin/node"),
      observer: path.resolve(build, "tests/tour/libveltrix_tour_observer.so"),
    });
  } catch (error) {
    await giveUp(error);
  }
  await (ending ?? cleanUp());
  process.exit(0);
}
