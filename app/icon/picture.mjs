// The icon: a recorder's disk with its play mark and its red light, on a blue tile. Drawn on a
// square of 1024 units, as Apple's icon grid has it: the tile is 824 units wide.
import { circle, roundedRectangle, roundedTriangle } from "./geometry.mjs";

const SIDE = 1024;

// Colours as [red, green, blue, opacity], 0 to 1; a gradient runs from top to bottom.
const plain = (color) => () => color;
const gradient = (top, bottom, from, to) => (y) => {
  const t = Math.min(1, Math.max(0, (y - from) / (to - from)));
  return top.map((value, i) => value + (bottom[i] - value) * t);
};

const tile = roundedRectangle(100, 100, 824, 824, 185);
const shadow = roundedRectangle(238, 300, 548, 448, 76);
const drive = roundedRectangle(238, 284, 548, 448, 76);
const window = roundedRectangle(282, 328, 460, 254, 40);
const play = roundedTriangle([466, 384], [584, 455], [466, 526], 12);
const light = circle(694, 656, 24);
const slot = roundedRectangle(300, 642, 236, 28, 14);

// From the back to the front. `blur` softens an edge, in units.
const layers = [
  { shape: tile, paint: gradient([0.2, 0.56, 0.98, 1], [0.07, 0.3, 0.78, 1], 100, 924) },
  { shape: shadow, paint: plain([0, 0.08, 0.3, 0.35]), blur: 48 },
  { shape: drive, paint: gradient([1, 1, 1, 1], [0.9, 0.93, 0.97, 1], 284, 732) },
  { shape: window, paint: gradient([0.12, 0.17, 0.27, 1], [0.18, 0.25, 0.38, 1], 328, 582) },
  { shape: play, paint: plain([1, 1, 1, 1]) },
  { shape: slot, paint: plain([0.7, 0.75, 0.82, 1]) },
  { shape: light, paint: plain([0.93, 0.2, 0.2, 1]) },
];

function coverage(distance, softness) {
  const t = Math.min(1, Math.max(0, 0.5 - distance / softness));
  return softness > 2 ? t * t * (3 - 2 * t) : t;
}

// The picture as `size` x `size` pixels of RGBA bytes, opacity not premultiplied.
export function drawIcon(size) {
  const pixels = Buffer.alloc(size * size * 4);
  const unit = SIDE / size;
  for (let row = 0; row < size; row += 1) {
    for (let column = 0; column < size; column += 1) {
      const color = colorAt((column + 0.5) * unit, (row + 0.5) * unit, unit);
      pixels.set(color, (row * size + column) * 4);
    }
  }
  return pixels;
}

function colorAt(x, y, unit) {
  let [red, green, blue, opacity] = [0, 0, 0, 0];
  for (const { shape, paint, blur = 0 } of layers) {
    const [r, g, b, a] = paint(y);
    const over = a * coverage(shape(x, y), Math.max(unit, blur));
    const under = opacity * (1 - over);
    const total = over + under;
    if (total > 0) {
      red = (r * over + red * under) / total;
      green = (g * over + green * under) / total;
      blue = (b * over + blue * under) / total;
    }
    opacity = total;
  }
  return [red, green, blue, opacity].map((value) => Math.round(value * 255));
}
