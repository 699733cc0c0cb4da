// update.mjs upgrade|repair --home HOME
// Puts the bundle's application in place of the installed one, or brings an interrupted attempt to
// a good end. Starts and stops nothing; configuration and recordings are not touched.

import { commandLine } from "./lib/arguments.mjs";
import { refuse, runScript } from "./lib/reply.mjs";
import { repair } from "./update/repair.mjs";
import { upgrade } from "./update/upgrade.mjs";

const kActions = new Map([
  ["upgrade", upgrade],
  ["repair", repair],
]);

await runScript("operator_failed", () => {
  const { word, layout } = commandLine();
  const action = kActions.get(word) ?? refuse("operator_failed");
  return action(layout);
});
