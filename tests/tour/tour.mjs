// tour.mjs BUILD OUTPUT: the tour itself, from the program's self-test to the last search for the
// passwords. Started by scripts/tour, which sees to what it needs.
//
//   tour.mjs      the order of the parts, and how everything that was started ends
//   steps/        what is done and what must come of it, a part of the product each
//   program.mjs   the program's windows, menu and alerts, as a person uses them
//   sight.mjs     what can be seen of them: asks the observer (observer/) inside the program
//   display.mjs   the virtual display with its mouse, keyboard and camera
//   scratch.mjs   the home folder in which all of it happens
//
// Every sentence is written out here once more, letter for letter, as the program must say it.

import path from "node:path";
import { Display } from "./display.mjs";
import { Journal } from "./journal.mjs";
import { Scratch } from "./scratch.mjs";
import { tryInstances } from "./steps/instances.mjs";
import { installRecorder } from "./steps/installing.mjs";
import { runService } from "./steps/service.mjs";
import { searchForPasswords } from "./steps/secrets.mjs";
import { runSelfTest } from "./steps/self-test.mjs";
import { setUpAccount, setUpSecondAccount } from "./steps/account.mjs";
import { serveOverTls, setUpTls } from "./steps/tls.mjs";
import { interruptUpdates, updateRecorder } from "./steps/updating.mjs";
import { useWindow } from "./steps/window.mjs";

const kParts = [
  runSelfTest,
  tryInstances,
  installRecorder,
  runService,
  updateRecorder,
  interruptUpdates,
  useWindow,
  setUpTls,
  setUpAccount,
  serveOverTls,
  setUpSecondAccount,
  searchForPasswords,
];

// Before whoever started the tour loses patience and ends it without letting it clean up.
const kLimit = 280; // seconds

const [build, output] = process.argv.slice(2);
const began = performance.now();
const journal = new Journal(path.resolve(output));
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
    journal.fail(error);
    await cleanUp();
    process.exit(1);
  })();
  return ending;
}

for (const signal of ["SIGINT", "SIGTERM", "SIGHUP"]) {
  process.once(signal, () => giveUp(new Error(`ended by ${signal}`)));
}
setTimeout(() => giveUp(new Error(`not done after ${kLimit} seconds`)), kLimit * 1000).unref();

try {
  display = await Display.open();
  const bundle = path.resolve(build, "Veltrix Home DVR.app");
  const tour = {
    scratch,
    display,
    journal,
    executable: path.join(bundle, "Veltrix Home DVR"),
    bundledRuntime: path.join(bundle, "Resources/bundle/runtime/bin/node"),
    observer: path.resolve(build, "tests/tour/libveltrix_tour_observer.so"),
    step: (title, action) => journal.step(display, title, action),
    passwords: [],
  };
  for (const part of kParts) await part(tour);
} catch (error) {
  if (ending === null && display !== null) display.photograph(journal.file("failed"));
  await giveUp(error);
}
await cleanUp();
journal.finish(Math.round((performance.now() - began) / 1000));
process.exit(0);
