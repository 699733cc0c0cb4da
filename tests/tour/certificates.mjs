// Certificates for the tour, made when it runs: a local authority, and what a careless hand might
// bring along instead of the right files.

import fs from "node:fs";
import path from "node:path";
import { run } from "./processes.mjs";

const kAuthority = ["basicConstraints=critical,CA:TRUE", "keyUsage=critical,keyCertSign"];
const forHost = (host) => [
  "basicConstraints=CA:FALSE",
  "extendedKeyUsage=serverAuth",
  `subjectAltName=DNS:${host}`,
];

let serial = 1;

/** Makes NAME-key.pem and NAME.pem in `folder`; `issuer` is what an earlier call returned. */
function makeCertificate(folder, name, extensions, issuer) {
  const made = {
    certificate: path.join(folder, `${name}.pem`),
    key: path.join(folder, `${name}-key.pem`),
  };
  const openssl = (...args) => run("openssl", args, { cwd: folder });
  const curve = ["-pkeyopt", "ec_paramgen_curve:prime256v1"];
  openssl("genpkey", "-algorithm", "EC", ...curve, "-out", made.key);
  fs.chmodSync(made.key, 0o600);
  const config = ["[req]", "distinguished_name=name", "[name]", "[extensions]", ...extensions];
  fs.writeFileSync(path.join(folder, "config"), `${config.join("\n")}\n`);
  const subject = ["-subj", `/CN=Tour ${name}`, "-config", "config"];
  openssl("req", "-new", "-key", made.key, ...subject, "-out", "request");
  const signing = issuer
    ? ["-CA", issuer.certificate, "-CAkey", issuer.key]
    : ["-signkey", made.key];
  const terms = ["-set_serial", String(serial++), "-days", "30", "-sha256"];
  const extending = ["-extfile", "config", "-extensions", "extensions"];
  const request = ["x509", "-req", "-in", "request", "-out", made.certificate];
  openssl(...request, ...signing, ...terms, ...extending);
  return made;
}

/** The authority, a good certificate for `host`, and one for another host. */
export function makeCertificates(folder, host) {
  fs.mkdirSync(folder, { mode: 0o700 });
  const authority = makeCertificate(folder, "authority", kAuthority);
  return {
    authority,
    good: makeCertificate(folder, "server", forHost(host), authority),
    elsewhere: makeCertificate(folder, "elsewhere", forHost("elsewhere.example.test"), authority),
  };
}
