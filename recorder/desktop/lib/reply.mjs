// What a script says to the companion: exactly one JSON object on standard output, small and whole.

import fs from "node:fs";

export const kReplySizeLimit = 8192;

/**
 * Ends an action with this outcome code; caught by `runScript`, never seen by a user as an error.
 */
export class Refusal extends Error {
  constructor(code) {
    super(code);
    this.code = code;
  }
}

export function refuse(code) {
  throw new Refusal(code);
}

/**
 * The reply as one line without its line feed; an object too large to be read becomes a failure.
 */
export function encodeReply(reply, failureCode) {
  const text = JSON.stringify(reply);
  if (Buffer.byteLength(text) + 1 <= kReplySizeLimit) return text;
  return JSON.stringify({ ok: false, code: failureCode });
}

/**
 * Runs `action`, which returns the reply object or throws, and writes the one reply. Whatever goes
 * wrong, a programming error included, ends in a reply: `failureCode` says that nothing better is
 * known.
 */
export async function runScript(failureCode, action) {
  let answered = false;
  const answer = (reply) => {
    if (answered) return;
    const line = `${encodeReply(reply, failureCode)}\n`;
    answered = true;
    writeWhole(1, line);
  };
  const fail = () => {
    answer({ ok: false, code: failureCode });
    // The reply is already with the kernel, so nothing can be cut off by leaving now.
    process.exit(1);
  };
  process.on("uncaughtException", fail);
  process.on("unhandledRejection", fail);

  try {
    answer(await action());
  } catch (error) {
    answer({ ok: false, code: error instanceof Refusal ? error.code : failureCode });
  }
}

/**
 * Writes all of `text` before it returns. The stream object of standard output is never touched: it
 * writes to pipes asynchronously, and what is still queued when a process exits is lost.
 */
export function writeWhole(descriptor, text) {
  const bytes = Buffer.from(text);
  let written = 0;
  while (written < bytes.length) {
    try {
      written += fs.writeSync(descriptor, bytes, written);
    } catch (error) {
      if (error.code !== "EAGAIN") return; // The reader has gone; there is nobody left to tell.
      pause(5);
    }
  }
}

function pause(milliseconds) {
  Atomics.wait(new Int32Array(new SharedArrayBuffer(4)), 0, 0, milliseconds);
}
