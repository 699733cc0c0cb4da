// Judging a certificate chain and its key the way a client will: by a real TLS handshake, held in
// memory, against the trusted roots. So path length, key usage, signature strength and everything
// else that makes a client refuse is judged by the code that will refuse it.

import { X509Certificate, createPrivateKey } from "node:crypto";
import net from "node:net";
import { duplexPair } from "node:stream";
import tls from "node:tls";

export const kMinimumTlsVersion = "TLSv1.2";

// OpenSSL's SSL_CTX_set_security_level(3): at 2, keys and signatures that today's browsers refuse,
// such as RSA below 2048 bits or SHA-1, are refused here too.
const kStrictness = { minVersion: kMinimumTlsVersion, ciphers: "DEFAULT@SECLEVEL=2" };

const kChainLimit = 10;
const kPemCertificate = /-----BEGIN CERTIFICATE-----[^-]+-----END CERTIFICATE-----/g;

/** The certificates in PEM text, in order, as PEM; null when there are none, too many, bad ones. */
export function parseCertificates(pem) {
  const blocks = pem.match(kPemCertificate) ?? [];
  if (blocks.length === 0 || blocks.length > kChainLimit) return null;
  try {
    return blocks.map((block) => new X509Certificate(block).toString());
  } catch {
    return null;
  }
}

/** The unencrypted private key in PEM text, as PEM; null when there is none. */
export function parsePrivateKey(pem) {
  try {
    return createPrivateKey(pem).export({ type: "pkcs8", format: "pem" });
  } catch {
    return null;
  }
}

/** Everything this computer trusts: the runtime's own roots and those of the system. */
export function systemRoots() {
  // getCACertificates came with Node 22.15; earlier ones know only their own roots.
  const system = tls.getCACertificates?.("system") ?? [];
  return [...new Set([...tls.rootCertificates, ...system])];
}

/**
 * Judges `certificates` (PEM, the server's own first) with `privateKey` (PEM) for a server at
 * `host`, against the roots `trusted` (PEM). Resolves to the first of these that applies:
 * "key_mismatch", "not_valid_now" (the server's own certificate), "unusable" (no server could use
 * it), "untrusted_issuer" (any doubt about the chain), "hostname_mismatch", or "accepted".
 */
export async function judgeCertificate(material) {
  const { certificates, privateKey, host, trusted, now = Date.now() } = material;
  const own = new X509Certificate(certificates[0]);
  if (!own.checkPrivateKey(createPrivateKey(privateKey))) return "key_mismatch";
  if (now < Date.parse(own.validFrom) || now > Date.parse(own.validTo)) return "not_valid_now";
  let doubt;
  try {
    doubt = await handshake({ certificates, privateKey, host, trusted });
  } catch {
    return "unusable";
  }
  if (doubt !== null) return "untrusted_issuer";
  return coversHost(own, host) ? "accepted" : "hostname_mismatch";
}

// Only subject alternative names count: browsers stopped looking at the common name.
function coversHost(certificate, host) {
  if (net.isIP(host)) return certificate.checkIP(host) !== undefined;
  return certificate.checkHost(host, { subject: "never" }) !== undefined;
}

/** A client's doubt about the chain, as a verification error code, or null when it has none. */
function handshake({ certificates, privateKey, host, trusted }) {
  const [near, far] = duplexPair();
  return new Promise((resolve, reject) => {
    const server = new tls.TLSSocket(far, {
      isServer: true,
      secureContext: tls.createSecureContext({
        cert: certificates.join(""),
        key: privateKey,
        ...kStrictness,
      }),
    });
    const client = tls.connect({
      socket: near,
      ca: trusted,
      // RFC 6066, section 3: a literal address is not sent as a server name.
      servername: net.isIP(host) ? "" : host,
      rejectUnauthorized: false,
      ...kStrictness,
      // The name is judged apart from the chain, so that each gets its own answer.
      checkServerIdentity: () => undefined,
    });
    client.once("secureConnect", () => resolve(client.authorizationError ?? null));
    for (const end of [client, server]) {
      end.on("error", reject);
      end.on("close", () => reject(new Error("closed during the handshake")));
    }
  }).finally(() => {
    near.destroy();
    far.destroy();
  });
}
