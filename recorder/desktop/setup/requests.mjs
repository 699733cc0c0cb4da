// The requests on standard input: one JSON object { "action", "values" } per line.

const kLineFeed = 0x0a;
// A request is a few paths and a password. What is longer is read past without being kept.
const kRequestLimit = 65536; // bytes

/**
 * The lines of a byte stream without their line feeds, null in place of one that is too long. Bytes
 * after the last line feed are no line.
 */
export async function* linesOf(stream) {
  let kept = [];
  let length = 0;
  for await (const chunk of stream) {
    let start = 0;
    for (let end; (end = chunk.indexOf(kLineFeed, start)) >= 0; start = end + 1) {
      kept.push(chunk.subarray(start, end));
      length += end - start;
      yield length > kRequestLimit ? null : Buffer.concat(kept);
      kept = [];
      length = 0;
    }
    length += chunk.length - start;
    if (length > kRequestLimit) kept = [];
    else kept.push(chunk.subarray(start));
  }
}

/** The request in a line, or null when it is not one. */
export function parseRequest(line) {
  if (line === null) return null;
  try {
    const request = JSON.parse(new TextDecoder("utf-8", { fatal: true }).decode(line));
    const { action, values } = request;
    return typeof action === "string" && isObject(values) ? { action, values } : null;
  } catch {
    return null;
  }
}

const isObject = (value) =>
  value !== null && typeof value === "object" && !Array.isArray(value);
