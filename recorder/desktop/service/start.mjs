// start: the server, then the gateway where one is configured. What a failed start has begun it
// ends again; what ran before keeps running.

import {
  isUpdatePending,
  requireConfiguration,
  requireInstallation,
} from "../lib/installation.mjs";
import { refuse } from "../lib/reply.mjs";
import { isRecordedRunning } from "./child.mjs";
import { gatewayConfiguration, gatewayState, startGateway } from "./gateway-process.mjs";
import { serverState, startServer, stopServer } from "./server-process.mjs";
import { withServiceLock } from "./service-lock.mjs";

export function start(layout) {
  return withServiceLock(layout, async () => {
    const { installationId } = requireInstallation(layout);
    if (isUpdatePending(layout)) refuse("repair_pending_update");
    await requireConfiguration(layout);
    const gateway = gatewayConfiguration(layout);

    const serverStarted = await ensureServer(layout, installationId);
    try {
      const gatewayStarted =
        gateway !== null && (await ensureGateway(layout, installationId, gateway));
      return { ok: true, code: serverStarted || gatewayStarted ? "started" : "running" };
    } catch (error) {
      if (serverStarted) await stopServer(layout);
      throw error;
    }
  });
}

/** True when the server was started, false when it ran before. */
async function ensureServer(layout, installationId) {
  if ((await serverState(layout, installationId)) === "running") return false;
  const stuck = isRecordedRunning(layout.pidFile);
  if (stuck || !(await startServer(layout, installationId))) refuse("stopped_or_unhealthy");
  return true;
}

/** True when the gateway was started, false when it ran before. */
async function ensureGateway(layout, installationId, gateway) {
  const ranBefore = isRecordedRunning(layout.gatewayPidFile);
  const bringUp = ranBefore ? gatewayState : startGateway;
  const state = await bringUp(layout, installationId, gateway);
  if (state !== "running") refuse(state);
  return !ranBefore;
}
