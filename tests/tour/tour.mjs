// tour.mjs BUILD OUTPUT: the tour itself, from the program's self-test to the last search for the
// passwords. Started by scripts/tour, which sees to what it needs.
//
//   tour.mjs      the order of the parts, and how everything that was started ends
//   steps/        what is done and what must come of it, a part of the product each
//   program.mjs   the program's windows, menu and alerts, as a person uses them
//   sight.mjs     what can be seen of them: asks the observer (observer/) inside the program
//   display.mjs   the virtual display with its mouse, keyboard and camera
//   scratch.mjs   the home folder in which all of it happens
//   stage.mjs     sets both, and clears them away however it ends
//
// Every sentence is written out here once more, letter for letter, as the program must say it.

import path from "node:path";
import { Journal } from "./journal.mjs";
import { perform } from "./stage.mjs";
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

function fail(error, display) {
  if (display !== null) display.photograph(journal.file("failed"));
  journal.fail(error);
}

await perform({ build, limit: kLimit, fail }, async (stage) => {
  const tour = {
    ...stage,
    journal,
    step: (title, action) => journal.step(stage.display, title, action),
    passwords: [],
  };
  for (const part of kParts) await part(tour);
  journal.finish(Math.round((performance.now() - began) / 1000));
});
