// draw-icon.mjs FILE: draws the icon into AppIcon.icns, as macOS wants it, or into AppIcon.png for
// everybody else.
import { mkdirSync, writeFileSync } from "node:fs";
import { dirname, extname } from "node:path";
import { encodeIcns } from "./icns.mjs";
import { drawIcon } from "./picture.mjs";
import { encodePng } from "./png.mjs";

// No window of ours shows it; window managers and desktops may. GNUstep decodes it at every launch
// and keeps it: at 512 pixels a side that is a megabyte.
const PNG_SIZE = 128;

const draw = {
  ".icns": encodeIcns,
  ".png": () => encodePng(drawIcon(PNG_SIZE), PNG_SIZE),
};

const [file = ""] = process.argv.slice(2);
const encode = draw[extname(file)];
if (encode === undefined) {
  console.error("usage: draw-icon.mjs FILE.icns|FILE.png");
  process.exitCode = 2;
} else {
  mkdirSync(dirname(file), { recursive: true });
  writeFileSync(file, encode());
}
