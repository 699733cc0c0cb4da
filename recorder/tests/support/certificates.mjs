// Certificate authorities and server certificates for the tests, made with the openssl command.

import { execFileSync } from "node:child_process";
import fs from "node:fs";
import path from "node:path";
import { temporaryFolder } from "./bundle.mjs";

let serial = 1;

/** Runs openssl in `folder`; an extension file is put there first. */
function openssl(folder, args, extensions = []) {
  const config = ["[req]", "distinguished_name=name", "[name]", "[extensions]", ...extensions];
  fs.writeFileSync(path.join(folder, "config"), `${config.join("\n")}\n`);
  execFileSync("openssl", args, { cwd: folder, stdio: ["ignore", "ignore", "pipe"] });
}

/**
 * A key and a certificate for it: { folder, name, certificate, key } with PEM texts. Without an
 * `issuer` it signs itself. `extensions` are lines of an openssl extension section.
 */
function makeCertificate({ name, issuer = null, extensions, days = 30, key = makeKey() }) {
  const folder = temporaryFolder();
  fs.writeFileSync(path.join(folder, "key"), key, { mode: 0o600 });
  const request = ["req", "-new", "-key", "key", "-subj", `/CN=${name}`, "-config", "config"];
  openssl(folder, [...request, "-out", "request"]);
  const signing = issuer
    ? ["-CA", path.join(issuer.folder, "certificate"), "-CAkey", path.join(issuer.folder, "key")]
    : ["-signkey", "key"];
  const terms = ["-set_serial", `${serial++}`, "-days", `${days}`, "-sha256"];
  const extending = ["-extfile", "config", "-extensions", "extensions"];
  const sign = ["x509", "-req", "-in", "request", ...signing, ...terms, ...extending];
  openssl(folder, [...sign, "-out", "certificate"], extensions);
  const certificate = fs.readFileSync(path.join(folder, "certificate"), "utf8");
  return { folder, name, certificate, key };
}

/** A private key in PEM; an elliptic one unless RSA bits are named. */
export function makeKey({ rsaBits = null, passphrase = null } = {}) {
  const algorithm = rsaBits
    ? ["RSA", "-pkeyopt", `rsa_keygen_bits:${rsaBits}`]
    : ["EC", "-pkeyopt", "ec_paramgen_curve:prime256v1"];
  const protection = passphrase ? ["-aes256", "-pass", `pass:${passphrase}`] : [];
  return execFileSync("openssl", ["genpkey", "-algorithm", ...algorithm, ...protection], {
    encoding: "utf8",
    stdio: ["ignore", "pipe", "ignore"],
  });
}

export function makeAuthority({ issuer = null, pathLength = null, ...rest } = {}) {
  const constraint = pathLength === null ? "CA:TRUE" : `CA:TRUE,pathlen:${pathLength}`;
  return makeCertificate({
    // A name of its own: RFC 5280, section 6.1, counts no self-issued one against a path length.
    name: `Test authority ${serial}`,
    issuer,
    extensions: [`basicConstraints=critical,${constraint}`, "keyUsage=critical,keyCertSign"],
    ...rest,
  });
}

/** A server certificate for `hosts`, "DNS:..." and "IP:..." entries, of which there may be none. */
export function makeServerCertificate({ hosts = ["DNS:dvr.example.org"], usage, ...rest } = {}) {
  const extensions = ["basicConstraints=CA:FALSE", `extendedKeyUsage=${usage ?? "serverAuth"}`];
  if (hosts.length > 0) extensions.push(`subjectAltName=${hosts.join(",")}`);
  return makeCertificate({ name: "dvr.example.org", extensions, ...rest });
}
