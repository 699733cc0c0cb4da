// The recorder's login, config/login.json: a user name and a salted scrypt hash of the password.
// The password itself is never stored, passed on or put into a message.
//   { version, username, scrypt: { cost, blockSize, parallelization, salt, hash },
//     trustLocalProxy }

import { randomBytes, scrypt, timingSafeEqual } from "node:crypto";
import { promisify } from "node:util";
import { isPrivateFile, readJsonObject, writePrivateJson } from "./files.mjs";

const kVersion = 1;
const kPasswordBytes = { least: 15, most: 128 };
const kSaltBytes = 16;
const kHashBytes = 32;
// The OWASP password storage guide's first choice for scrypt: 128 MB of memory for each guess.
const kEffort = { cost: 2 ** 17, blockSize: 8, parallelization: 1 };

const derive = promisify(scrypt);

/** 1 to 64 letters, digits and . _ @ + -, beginning with a letter or digit, of any script. */
export function isUsername(value) {
  return typeof value === "string" && /^[\p{L}\p{N}][\p{L}\p{M}\p{N}._@+-]{0,63}$/u.test(value);
}

/** 15 to 128 bytes of UTF-8, no control characters. */
export function isPassword(value) {
  if (typeof value !== "string" || !value.isWellFormed() || /\p{Cc}/u.test(value)) return false;
  const length = Buffer.byteLength(value);
  return length >= kPasswordBytes.least && length <= kPasswordBytes.most;
}

export async function writeLogin(layout, login, effort = kEffort) {
  const { username, password, trustLocalProxy } = login;
  const salt = randomBytes(kSaltBytes);
  const hash = await stretch(password, salt, effort);
  writePrivateJson(layout.loginFile, {
    version: kVersion,
    username: normal(username),
    scrypt: { ...effort, salt: salt.toString("base64"), hash: hash.toString("base64") },
    trustLocalProxy,
  });
}

/** Do user name and password open this recorder? Takes equally long for a wrong user name. */
export async function verifyLogin(layout, { username, password }) {
  if (!isPrivateFile(layout.loginFile)) return false;
  const stored = readJsonObject(layout.loginFile);
  const { salt, hash, ...effort } = stored.scrypt;
  const expected = Buffer.from(hash, "base64");
  const actual = await stretch(password, Buffer.from(salt, "base64"), effort);
  const rightPassword = actual.length === expected.length && timingSafeEqual(actual, expected);
  return rightPassword && normal(username) === stored.username;
}

// RFC 8265, section 4.2.2: one normal form, since keyboards and browsers differ in theirs.
const normal = (text) => text.normalize("NFC");

function stretch(password, salt, { cost, blockSize, parallelization }) {
  // Twice what the algorithm needs, RFC 7914, section 5; Node's own limit is lower.
  const maxmem = 256 * cost * blockSize;
  return derive(normal(password), salt, kHashBytes, { cost, blockSize, parallelization, maxmem });
}
