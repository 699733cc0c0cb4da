// The TLS gateway as a process. It belongs to the service only where config/tls.json exists; that
// file is written when TLS is set up.

import fs from "node:fs";
import net from "node:net";
import tls from "node:tls";
import { judgeCertificate, systemRoots } from "../lib/certificate.mjs";
import { kGatewayExit } from "../lib/gateway-exit.mjs";
import { isPortFree } from "../lib/port.mjs";
import { refuse } from "../lib/reply.mjs";
import { isTlsConfigured, readTlsConfiguration } from "../lib/tls-configuration.mjs";
import { endProcess, isRecordedRunning, launch, waitForHealth } from "./child.mjs";
import { getSecureHealth } from "./health.mjs";

/**
 * { host, port, ca } of the configured gateway, null where none is configured. Refuses with
 * "gateway_configuration_invalid" when it could not start from what is there.
 */
export function gatewayConfiguration(layout) {
  if (!isTlsConfigured(layout)) return null;
  try {
    return readConfiguration(layout);
  } catch {
    return refuse("gateway_configuration_invalid");
  }
}

function readConfiguration(layout) {
  if (!fs.existsSync(layout.gatewayFile)) throw new Error("no gateway to start");
  const { certificates, privateKey, approvedCA, host, port } = readTlsConfiguration(layout);
  // Throws when certificate and key do not belong together.
  tls.createSecureContext({ cert: certificates.join(""), key: privateKey });
  return { host, port, ca: approvedCA ?? systemRoots() };
}

/** Refuses when a gateway is configured and a client would not accept its certificate today. */
export async function requireTrustedGateway(layout) {
  const gateway = gatewayConfiguration(layout);
  if (gateway === null) return;
  const verdict = await judgeCertificate({ ...readTlsConfiguration(layout), trusted: gateway.ca });
  if (verdict === "not_valid_now") refuse("gateway_unhealthy");
  if (verdict !== "accepted") refuse("gateway_configuration_invalid");
}

/** "running", or the outcome code that says why the gateway cannot be counted on. */
export async function gatewayState(layout, installationId, gateway) {
  if (!isRecordedRunning(layout.gatewayPidFile)) return "gateway_unhealthy";
  return gatewayHealth(installationId, gateway);
}

/** "running", or why there is no gateway; in that case nothing is left of it. */
export async function startGateway(layout, installationId, gateway) {
  if (!(await isPortFree(gateway.port))) return "gateway_port_unavailable";
  let state = "gateway_unhealthy";
  const child = launch(layout, layout.gatewayFile);
  await waitForHealth(child, async () => {
    if (!isRecordedRunning(layout.gatewayPidFile)) return undefined;
    state = await gatewayHealth(installationId, gateway);
    // Distrust does not pass with time; anything else may.
    return state === "gateway_unhealthy" ? undefined : state === "running";
  });
  return stateOfEnded(child) ?? state;
}

/** The outcome that a gateway gave as its reason to end by itself; null when it gave none. */
function stateOfEnded({ exitCode }) {
  if (exitCode === kGatewayExit.portInUse) return "gateway_port_unavailable";
  if (exitCode === kGatewayExit.configurationInvalid) return "gateway_configuration_invalid";
  return null;
}

export function stopGateway(layout) {
  return endProcess(layout.gatewayPidFile);
}

// The gateway listens on this computer's own address while its certificate is for its public name,
// so the name to be proved is given apart from the address to connect to.
async function gatewayHealth(installationId, { host, port, ca }) {
  try {
    const health = await getSecureHealth({
      host: "127.0.0.1",
      port,
      ca,
      servername: net.isIP(host) ? "" : host,
      checkServerIdentity: (_, certificate) => tls.checkServerIdentity(host, certificate),
    });
    return health.installationId === installationId ? "running" : "gateway_unhealthy";
  } catch (error) {
    return isDistrust(error) ? "gateway_configuration_invalid" : "gateway_unhealthy";
  }
}

// X509_verify_cert_error_string(3) lists the reasons, which Node passes on as codes. An expired
// certificate is not among them: nothing was misconfigured, it needs to be looked at.
function isDistrust({ code }) {
  return [
    "ERR_TLS_CERT_ALTNAME_INVALID",
    "DEPTH_ZERO_SELF_SIGNED_CERT",
    "SELF_SIGNED_CERT_IN_CHAIN",
    "UNABLE_TO_GET_ISSUER_CERT",
    "UNABLE_TO_GET_ISSUER_CERT_LOCALLY",
    "UNABLE_TO_VERIFY_LEAF_SIGNATURE",
    "CERT_UNTRUSTED",
    "INVALID_CA",
    "INVALID_PURPOSE",
  ].includes(code);
}
