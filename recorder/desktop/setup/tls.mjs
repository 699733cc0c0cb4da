// tls.configure: judges a certificate chain and its key, and only when nothing speaks against them
// makes them the gateway's configuration. Starts nothing.
//
// The checks run from what needs no file to what needs all of them, so that the first complaint is
// the one to mend first: existing configuration, request, origin, port, key permissions, contents,
// key pair, validity, issuer, host name.

import {
  judgeCertificate,
  parseCertificates,
  parsePrivateKey,
  systemRoots,
} from "../lib/certificate.mjs";
import { readLimited } from "../lib/files.mjs";
import { isUsablePath } from "../lib/layout.mjs";
import { isPortFree } from "../lib/port.mjs";
import { refuse } from "../lib/reply.mjs";
import { kDefaultPort, originAddress, parseOrigin } from "../lib/settings.mjs";
import {
  isTlsConfigured,
  kPemSizeLimit,
  writeTlsConfiguration,
} from "../lib/tls-configuration.mjs";

const kPathBytesLimit = 4096;
const kPrivilegedPorts = 1023;

const kRefusals = Object.freeze({
  key_mismatch: "tls_key_mismatch",
  untrusted_issuer: "tls_untrusted_issuer",
  hostname_mismatch: "tls_hostname_mismatch",
});

export async function configureTls({ layout, installation }, values) {
  if (isTlsConfigured(layout)) refuse("existing_tls_configuration");
  const request = checkedRequest(values);
  const address = requireAddress(request.origin, installation);
  await requirePort(address.port, installation);

  const privateKey = parsePrivateKey(readPrivateKey(request.keyFile)) ?? refuse("setup_failed");
  const certificates = readCertificates(request.certificateFile);
  const approvedCA = request.approvedCAFile && readCertificates(request.approvedCAFile).join("");
  const material = { certificates, privateKey, host: address.host };
  const neededCA = await requireTrust(material, approvedCA);

  writeTlsConfiguration(layout, { ...material, approvedCA: neededCA, port: address.port });
  return { ok: true, code: "tls_configured_stopped" };
}

function checkedRequest({ origin, certificateFile, keyFile, approveLocalCA, approvedCAFile }) {
  const paths = [certificateFile, keyFile, approvedCAFile ?? keyFile];
  const valid =
    paths.every((path) => isUsablePath(path) && Buffer.byteLength(path) <= kPathBytesLimit) &&
    typeof origin === "string" &&
    typeof approveLocalCA === "boolean";
  if (!valid) refuse("setup_failed");
  // Without the consent the file is not even looked at.
  const consented = approveLocalCA ? approvedCAFile : null;
  return { origin, certificateFile, keyFile, approvedCAFile: consented };
}

function requireAddress(requestedOrigin, { origin }) {
  if (origin === "") refuse("setup_failed");
  // A window that was open while the address was changed asks for a certificate of the old one.
  if (parseOrigin(requestedOrigin) !== origin) refuse("tls_hostname_mismatch");
  return originAddress(origin);
}

async function requirePort(port, installation) {
  if (port === installation.port || port === kDefaultPort) {
    refuse("gateway_port_conflicts_backend");
  }
  if (port <= kPrivilegedPorts || !(await isPortFree(port))) {
    refuse("unprivileged_tls_port_required");
  }
}

function readPrivateKey(file) {
  try {
    return readPem(file, requirePrivateToThisAccount);
  } catch (error) {
    // A key of another account that is rightly private cannot even be opened.
    return error.code === "EACCES" ? refuse("tls_key_permissions") : rethrow(error);
  }
}

function requirePrivateToThisAccount({ uid, mode }) {
  if (uid !== process.getuid() || (mode & 0o7777) !== 0o600) refuse("tls_key_permissions");
}

const readCertificates = (file) => parseCertificates(readPem(file)) ?? refuse("setup_failed");

const readPem = (file, inspect) => readLimited(file, kPemSizeLimit, inspect).toString("latin1");

/** The approved CA when the trust rests on it, null when the system's roots are enough. */
async function requireTrust(material, approvedCA) {
  const verdict = await judgeCertificate({ ...material, trusted: systemRoots() });
  if (verdict === "accepted") return null;
  if (verdict !== "untrusted_issuer" || !approvedCA) refuse(kRefusals[verdict] ?? "setup_failed");
  const second = await judgeCertificate({ ...material, trusted: approvedCA });
  return second === "accepted" ? approvedCA : refuse(kRefusals[second] ?? "setup_failed");
}

function rethrow(error) {
  throw error;
}
