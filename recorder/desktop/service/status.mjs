// What runs, judged by asking it.

import { isRecordedRunning } from "./child.mjs";
import { gatewayConfiguration, gatewayState } from "./gateway-process.mjs";
import { serverState } from "./server-process.mjs";
import { requireSettledInstallation } from "./service-lock.mjs";

export async function status(layout) {
  const { installationId } = requireSettledInstallation(layout);
  const code = await serviceState(layout, installationId);
  return { ok: code === "running" || code === "stopped", code };
}

/**
 * "running" when the server, and the gateway where one is configured, run and are well; "stopped"
 * when both ended properly; else the outcome code that says what is wrong.
 */
export async function serviceState(layout, installationId) {
  const server = await serverState(layout, installationId);
  if (server === "stopped" && !isRecordedRunning(layout.gatewayPidFile)) return "stopped";
  if (server !== "running") return "stopped_or_unhealthy";
  const gateway = gatewayConfiguration(layout);
  return gateway === null ? "running" : gatewayState(layout, installationId, gateway);
}
