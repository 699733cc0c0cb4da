// Asks a server how it is: GET /health, over plain HTTP on this computer or through TLS.

import http from "node:http";
import https from "node:https";

const kAnswerLimit = 3000; // milliseconds
const kBodyLimit = 4096; // bytes

/** The health object, or null when there is no proper answer. */
export async function getHealth(address) {
  return requestHealth(http, address).catch(() => null);
}

/** The health object through TLS; rejects with the error that says why there is none. */
export function getSecureHealth(address) {
  return requestHealth(https, address);
}

function requestHealth(protocol, address) {
  return new Promise((resolve, reject) => {
    const options = { ...address, path: "/health", agent: false, timeout: kAnswerLimit };
    const request = protocol.get(options, (response) => {
      readBody(response).then(resolve, reject);
    });
    // The option above only limits silence; this limits the whole exchange.
    const limit = setTimeout(() => request.destroy(new Error("no answer")), kAnswerLimit);
    request.on("timeout", () => request.destroy(new Error("no answer")));
    request.on("error", reject);
    request.on("close", () => {
      clearTimeout(limit);
      reject(new Error("closed without an answer"));
    });
  });
}

async function readBody(response) {
  const chunks = [];
  let length = 0;
  for await (const chunk of response) {
    length += chunk.length;
    if (length > kBodyLimit) throw new Error("answer too long");
    chunks.push(chunk);
  }
  if (response.statusCode !== 200) throw new Error("not healthy");
  const health = JSON.parse(Buffer.concat(chunks).toString("utf8"));
  if (health === null || typeof health !== "object") throw new Error("not a health object");
  return health;
}
