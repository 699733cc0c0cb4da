// Everything in the approval service that has to be unguessable: user codes, device codes and the
// credentials handed to recorders.

import { createHash, createHmac, randomBytes, randomInt } from "node:crypto";

// RFC 8628, section 6.1: no vowels, so that no code spells a word.
const kLetters = "BCDFGHJKLMNPQRSTVWXZ";
const kDigits = "0123456789";

const pick = (alphabet, count) =>
  Array.from({ length: count }, () => alphabet[randomInt(alphabet.length)]).join("");

/** What the owner reads and compares: four letters, a dash, four digits. */
export const newUserCode = () => `${pick(kLetters, 4)}-${pick(kDigits, 4)}`;

export const newSecret = () => randomBytes(32).toString("base64url");

export const newId = () => randomBytes(9).toString("base64url");

/** Secrets are looked up by digest, so that the state file never holds a usable one. */
export const digest = (secret) => createHash("sha256").update(secret).digest("base64url");

/**
 * A credential is derived, not drawn, so that an answer that was lost on its way can be given
 * again, word for word, without ever having been stored.
 */
export const deriveToken = (serviceSecret, ...parts) =>
  createHmac("sha256", serviceSecret).update(JSON.stringify(parts)).digest("base64url");
