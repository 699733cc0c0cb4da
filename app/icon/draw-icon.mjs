// draw-icon.mjs FOLDER: writes AppIcon.icns for macOS and AppIcon.png for everybody else into
// the folder.
import { mkdirSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { encodeIcns } from "./icns.mjs";
import { drawIcon } from "./picture.mjs";
import { encodePng } from "./png.mjs";

// No window of ours shows it; window managers and desktops may. GNUstep decodes it at every launch
// and keeps it: at 512 pixels a side that is a megabyte.
const LINUX_SIZE = 128;

const [folder] = process.argv.slice(2);
if (folder === undefined) {
  console.error("usage: draw-icon.mjs FOLDER");
  process.exitCode = 2;
} else {
  mkdirSync(folder, { recursive: true });
  writeFileSync(join(folder, "AppIcon.icns"), encodeIcns());
  writeFileSync(join(folder, "AppIcon.png"), encodePng(drawIcon(LINUX_SIZE), LINUX_SIZE));
}
