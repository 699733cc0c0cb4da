// controller.mjs check|overview|recordings|shares|inspect --home HOME
// Checks the configuration, and tells the companion which page or folder to open.

import { isSoundApplication } from "./lib/application.mjs";
import { commandLine } from "./lib/arguments.mjs";
import { requireConfiguration, requireInstallation } from "./lib/installation.mjs";
import { refuse, runScript } from "./lib/reply.mjs";
import { requireTrustedGateway } from "./service/gateway-process.mjs";
import { requireSettledInstallation } from "./service/service-lock.mjs";
import { serviceState } from "./service/status.mjs";

const kActions = new Map([
  ["check", check],
  ["inspect", inspect],
  ["overview", (layout) => openPage(layout, "/dashboard")],
  ["recordings", (layout) => openPage(layout, "/recordings")],
  ["shares", (layout) => openPage(layout, "/shares")],
]);

async function check(layout) {
  requireSettledInstallation(layout);
  await requireConfiguration(layout);
  if (!(await isSoundApplication(layout))) refuse("installation_not_ready");
  await requireTrustedGateway(layout);
  return { ok: true, code: "checked" };
}

// The folder is where a wrong setting is put right, so a wrong setting must not keep it shut.
function inspect(layout) {
  requireInstallation(layout);
  return { ok: true, code: "ready", configurationPath: layout.configFolder };
}

async function openPage(layout, page) {
  const { installationId } = requireSettledInstallation(layout);
  const { origin } = await requireConfiguration(layout);
  const state = await serviceState(layout, installationId);
  if (state !== "running") refuse(state === "stopped" ? "stopped_or_unhealthy" : state);
  return { ok: true, code: "ready", url: origin + page };
}

await runScript("operator_failed", () => {
  const { word, layout } = commandLine();
  const action = kActions.get(word) ?? refuse("operator_failed");
  return action(layout);
});
