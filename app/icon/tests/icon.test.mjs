import assert from "node:assert/strict";
import { test } from "node:test";
import { inflateSync } from "node:zlib";
import { ICNS_ENTRIES, encodeArgb, encodeIcns } from "../icns.mjs";
import { drawIcon } from "../picture.mjs";
import { encodePng } from "../png.mjs";

function entriesOf(icns) {
  const entries = [];
  for (let at = 8; at < icns.length; at += icns.readUInt32BE(at + 4)) {
    entries.push({
      type: icns.toString("latin1", at, at + 4),
      data: icns.subarray(at + 8, at + icns.readUInt32BE(at + 4)),
    });
  }
  return entries;
}

function unpackChannel(packed, start, count) {
  const bytes = [];
  let at = start;
  while (bytes.length < count) {
    const control = packed[at];
    if (control < 128) {
      bytes.push(...packed.subarray(at + 1, at + control + 2));
      at += control + 2;
    } else {
      bytes.push(...Array(control - 125).fill(packed[at + 1]));
      at += 2;
    }
  }
  return { bytes, end: at };
}

test("the container declares its own length and holds every size once", () => {
  const icns = encodeIcns();
  assert.equal(icns.toString("latin1", 0, 4), "icns");
  assert.equal(icns.readUInt32BE(4), icns.length);
  assert.deepEqual(entriesOf(icns).map(({ type }) => type), ICNS_ENTRIES.map(({ type }) => type));
});

test("every picture of the container has the size its type stands for", () => {
  const sizes = {
    ic11: 32, ic12: 64, ic07: 128, ic13: 256, ic08: 256, ic14: 512, ic09: 512, ic10: 1024,
  };
  const pngs = entriesOf(encodeIcns()).filter(({ type }) => type in sizes);
  assert.equal(pngs.length, 8);
  for (const { type, data } of pngs) {
    assert.equal(data.readUInt32BE(16), sizes[type], type);
    assert.equal(data.readUInt32BE(20), sizes[type], type);
  }
});

test("packed channels unpack to the picture they came from", () => {
  const size = 16;
  const pixels = drawIcon(size);
  const packed = encodeArgb(pixels, size);
  assert.equal(packed.toString("latin1", 0, 4), "ARGB");
  let start = 4;
  for (const offset of [3, 0, 1, 2]) {
    const { bytes, end } = unpackChannel(packed, start, size * size);
    assert.deepEqual(bytes, [...pixels.filter((_, index) => index % 4 === offset)]);
    start = end;
  }
  assert.equal(start, packed.length);
});

test("a PNG file unpacks to the pixels it was made of", () => {
  const size = 32;
  const pixels = drawIcon(size);
  const png = encodePng(pixels, size);
  const length = png.readUInt32BE(33);
  const rows = inflateSync(png.subarray(41, 41 + length));
  for (let row = 0; row < size; row += 1) {
    const start = row * (size * 4 + 1);
    assert.equal(rows[start], 0);
    assert.deepEqual(rows.subarray(start + 1, start + 1 + size * 4),
      pixels.subarray(row * size * 4, (row + 1) * size * 4));
  }
});

test("the corners are clear and the tile is not", () => {
  const size = 64;
  const pixels = drawIcon(size);
  const opacityAt = (x, y) => pixels[(y * size + x) * 4 + 3];
  assert.equal(opacityAt(0, 0), 0);
  assert.equal(opacityAt(63, 63), 0);
  assert.equal(opacityAt(32, 10), 255);
});
