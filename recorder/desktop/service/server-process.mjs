// The recorder's server as a process: is it there, is it well, start it, stop it.

import { isRunning, readRecord } from "../lib/processes.mjs";
import { getHealth } from "./health.mjs";
import { endProcess, launch, waitForHealth } from "./child.mjs";

/**
 * "running": serves and answers for this installation. "stopped": ended properly, or was never
 * started. "unhealthy": ended without tidying up, or is there but does not answer as it should.
 */
export async function serverState(layout, installationId) {
  const record = readRecord(layout.pidFile);
  if (record === null) return "stopped";
  if (!isRunning(record)) return "unhealthy";
  return (await isHealthy(record, installationId)) ? "running" : "unhealthy";
}

/** Resolves to true when a freshly started server answers; otherwise nothing is left of it. */
export async function startServer(layout, installationId) {
  const child = launch(layout, layout.serverFile);
  return waitForHealth(child, async () => {
    const record = readRecord(layout.pidFile);
    if (record === null || record.pid !== child.pid || !isRunning(record)) return undefined;
    return (await isHealthy(record, installationId)) || undefined;
  });
}

export function stopServer(layout) {
  return endProcess(layout.pidFile);
}

// A server that was started before the port was edited still serves at its old one, so the port
// comes from the server's own record, not from the settings.
async function isHealthy(record, installationId) {
  const health = await getHealth({ host: "127.0.0.1", port: record.port });
  return health?.installationId === installationId && health.pid === record.pid;
}
