// draw-icon.mjs FOLDER: writes AppIcon.icns for macOS and AppIcon.png (512 pixels) for everybody
// else into the folder.
import { mkdirSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { encodeIcns } from "./icns.mjs";
import { drawIcon } from "./picture.mjs";
import { encodePng } from "./png.mjs";

const LINUX_SIZE = 512;

const [folder] = process.argv.slice(2);
if (folder === undefined) {
  console.error("usage: draw-icon.mjs FOLDER");
  process.exitCode = 2;
} else {
  mkdirSync(folder, { recursive: true });
  writeFileSync(join(folder, "AppIcon.icns"), encodeIcns());
  writeFileSync(join(folder, "AppIcon.png"), encodePng(drawIcon(LINUX_SIZE), LINUX_SIZE));
}
