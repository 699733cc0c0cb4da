// Apple's icon container: "icns", the length of the file, then one entry after another, each a
// four-letter type, its length and a picture. From 64 pixels on an entry holds a PNG file; the two
// smallest hold run-length packed channels, which is what the Finder reads there.
import { drawIcon } from "./picture.mjs";
import { encodePng } from "./png.mjs";

// Type, pixels, and how the entry is written; "@2x" entries are those of double the resolution.
export const ICNS_ENTRIES = [
  { type: "ic04", size: 16, encode: encodeArgb }, // 16
  { type: "ic11", size: 32, encode: encodePng }, // 16@2x
  { type: "ic05", size: 32, encode: encodeArgb }, // 32
  { type: "ic12", size: 64, encode: encodePng }, // 32@2x
  { type: "ic07", size: 128, encode: encodePng }, // 128
  { type: "ic13", size: 256, encode: encodePng }, // 128@2x
  { type: "ic08", size: 256, encode: encodePng }, // 256
  { type: "ic14", size: 512, encode: encodePng }, // 256@2x
  { type: "ic09", size: 512, encode: encodePng }, // 512
  { type: "ic10", size: 1024, encode: encodePng }, // 512@2x
];

export function encodeIcns() {
  const pictures = new Map();
  const entries = ICNS_ENTRIES.map(({ type, size, encode }) => {
    if (!pictures.has(size)) {
      pictures.set(size, drawIcon(size));
    }
    return block(type, encode(pictures.get(size), size));
  });
  return block("icns", Buffer.concat(entries));
}

function block(type, data) {
  const head = Buffer.alloc(8);
  head.write(type, 0, "latin1");
  head.writeUInt32BE(data.length + 8, 4);
  return Buffer.concat([head, data]);
}

const ARGB_CHANNELS = [3, 0, 1, 2];

export function encodeArgb(pixels) {
  const channels = ARGB_CHANNELS.map((offset) =>
    packRuns(pixels.filter((_, index) => index % 4 === offset)));
  return Buffer.concat([Buffer.from("ARGB", "latin1"), ...channels]);
}

// A byte below 128 announces that many plus one bytes as they are; one from 128 on a run of the
// next byte, three times and more.
const LONGEST_LITERAL = 128;
const SHORTEST_RUN = 3;
const LONGEST_RUN = 130;

function packRuns(bytes) {
  const packed = [];
  let literal = [];
  const flush = () => {
    if (literal.length > 0) {
      packed.push(literal.length - 1, ...literal);
      literal = [];
    }
  };
  for (let at = 0; at < bytes.length;) {
    const run = runLength(bytes, at);
    if (run >= SHORTEST_RUN) {
      flush();
      packed.push(run - SHORTEST_RUN + 128, bytes[at]);
      at += run;
    } else {
      literal.push(bytes[at]);
      at += 1;
      if (literal.length === LONGEST_LITERAL) {
        flush();
      }
    }
  }
  flush();
  return Buffer.from(packed);
}

function runLength(bytes, at) {
  let end = at + 1;
  while (end < bytes.length && end - at < LONGEST_RUN && bytes[end] === bytes[at]) {
    end += 1;
  }
  return end - at;
}
