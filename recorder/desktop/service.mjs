// service.mjs start|stop|status --home HOME
// Starts, stops and looks at the recorder's server and, where TLS is configured, its gateway.

import { commandLine } from "./lib/arguments.mjs";
import { refuse, runScript } from "./lib/reply.mjs";
import { start } from "./service/start.mjs";
import { status } from "./service/status.mjs";
import { stop } from "./service/stop.mjs";

const kActions = new Map([
  ["start", start],
  ["stop", stop],
  ["status", status],
]);

await runScript("operator_failed", () => {
  const { word, layout } = commandLine();
  const action = kActions.get(word) ?? refuse("operator_failed");
  return action(layout);
});
