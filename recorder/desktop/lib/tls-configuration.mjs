// What the TLS gateway serves with, as TLS setup leaves it: config/tls.json,
//   { "certificateFile", "keyFile", "approvedCAFile"?, "host", "port" }
// and the files it names, private copies in the same folder. Copies, not the files that were
// chosen: what was validated is what is served, also after a download folder was emptied. tls.json
// is written last and makes the configuration exist.

import { parseCertificates, parsePrivateKey } from "./certificate.mjs";
import {
  isPresent,
  isPrivateFile,
  readJsonObject,
  readLimited,
  writePrivateFile,
  writePrivateJson,
} from "./files.mjs";
import { isUsablePath } from "./layout.mjs";
import { isPort } from "./settings.mjs";

export const kPemSizeLimit = 256 * 1024;

export function isTlsConfigured(layout) {
  return isPresent(layout.tlsFile);
}

/** `approvedCA` is null when the certificate is trusted by the system's own roots. */
export function writeTlsConfiguration(layout, configuration) {
  const { certificates, privateKey, approvedCA, host, port } = configuration;
  writePrivateFile(layout.tlsCertificateFile, certificates.join(""));
  writePrivateFile(layout.tlsKeyFile, privateKey);
  if (approvedCA !== null) writePrivateFile(layout.tlsApprovedCAFile, approvedCA);
  writePrivateJson(layout.tlsFile, {
    certificateFile: layout.tlsCertificateFile,
    keyFile: layout.tlsKeyFile,
    ...(approvedCA === null ? {} : { approvedCAFile: layout.tlsApprovedCAFile }),
    host,
    port,
  });
}

/** { certificates, privateKey, approvedCA, host, port }; throws when any of it is unsound. */
export function readTlsConfiguration(layout) {
  requirePrivate(layout.tlsFile);
  const stored = readJsonObject(layout.tlsFile);
  const { certificateFile, keyFile, approvedCAFile, host, port } = stored;
  const files = [certificateFile, keyFile, approvedCAFile ?? keyFile];
  if (!files.every(isUsablePath)) throw new Error("a path is unusable");
  if (typeof host !== "string" || host === "" || !isPort(port)) throw new Error("no address");
  requirePrivate(keyFile);
  return {
    certificates: parseCertificates(readPem(certificateFile)) ?? fail("no certificate"),
    privateKey: parsePrivateKey(readPem(keyFile)) ?? fail("no private key"),
    approvedCA: approvedCAFile === undefined ? null : readPem(approvedCAFile),
    host,
    port,
  };
}

const readPem = (file) => readLimited(file, kPemSizeLimit).toString("latin1");

function requirePrivate(file) {
  if (!isPrivateFile(file)) fail(`${file} is not private`);
}

function fail(reason) {
  throw new Error(reason);
}
