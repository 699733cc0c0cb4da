// A virtual display of the tour's own: mouse, keyboard and camera. The actions are those of a real
// pointer and real keys, sent to the display and not to the program.

import { spawn } from "node:child_process";
import { once } from "node:events";
import { isAlive, run } from "./processes.mjs";
import { eventually } from "./waiting.mjs";

const kSize = { width: 1280, height: 960 };

export class Display {
  #server;

  /** Xvfb itself finds a display number that is free. */
  static async open() {
    const display = new Display();
    const screen = `${kSize.width}x${kSize.height}x24`;
    const args = ["-displayfd", "3", "-screen", "0", screen, "-nolisten", "tcp", "-noreset"];
    display.#server = spawn("Xvfb", args, { stdio: ["ignore", "ignore", "ignore", "pipe"] });
    const [number] = await Promise.race([
      once(display.#server.stdio[3].setEncoding("utf8"), "data"),
      once(display.#server, "exit").then(() => Promise.reject(new Error("Xvfb did not start"))),
    ]);
    display.name = `:${number.trim()}`;
    return display;
  }

  close() {
    this.#server.kill("SIGTERM");
  }

  async closed() {
    await eventually(() => !isAlive(this.#server.pid), "the end of the display");
  }

  click({ x, y, width, height }) {
    const at = [x + width / 2, y + height / 2].map((value) => String(Math.round(value)));
    // A press and a release in the same instant would be lost on a button.
    const press = ["mousedown", "1", "sleep", "0.02", "mouseup", "1"];
    this.#xdotool(["mousemove", ...at, "sleep", "0.02", ...press]);
  }

  /** Clicks twice, as fast as a hand can. */
  doubleClick(frame) {
    this.click(frame);
    this.click(frame);
  }

  /** By way of standard input: a command line can be read by everybody. */
  type(text) {
    this.#xdotool(["type", "--delay", "4", "--file", "-"], text);
  }

  press(key) {
    this.#xdotool(["key", key]);
  }

  hasWindow(title) {
    try {
      return this.#xdotool(["search", "--onlyvisible", "--name", `^${title}$`]).trim() !== "";
    } catch {
      return false; // nothing found is a failure to xdotool
    }
  }

  /** The titles of all windows that can be seen, from the front to the back. */
  titlesOfShown() {
    const listing = this.run("xwininfo", ["-root", "-children"]);
    return [...listing.matchAll(/^ +(0x[0-9a-f]+) "(.*?)": /gm)]
      .filter(([, id]) => this.run("xwininfo", ["-id", id]).includes("IsViewable"))
      .map(([, , title]) => title);
  }

  isAbove(title, other) {
    return this.titlesOfShown().find((name) => name === title || name === other) === title;
  }

  /** Opens a window of another program's over `frame`. */
  coverWith(title, { x, y, width, height }) {
    const geometry = `${width}x${height}+${x}+${y}`;
    return this.#startXev(["-name", title, "-geometry", geometry]);
  }

  /** Notes which windows appear and disappear, by their ids, until it is closed. */
  async watchWindows() {
    const xev = this.#startXev(["-root", "-event", "substructure"]);
    const watched = () => this.run("xwininfo", ["-root", "-events"]).includes("SubstructureNotify");
    await eventually(watched, "the watch at work");
    const noted = (event) => {
      const pattern = new RegExp(`^${event} event, .*\\n.* window (0x[0-9a-f]+)`, "gm");
      return [...new Set([...xev.output().matchAll(pattern)].map(([, id]) => id))];
    };
    return {
      mapped: () => noted("MapNotify"),
      unmapped: () => noted("UnmapNotify"),
      close: xev.close,
    };
  }

  #startXev(args) {
    let output = "";
    const xev = spawn("xev", args, {
      env: { ...process.env, DISPLAY: this.name },
      stdio: ["ignore", "pipe", "ignore"],
    });
    xev.stdout.setEncoding("utf8").on("data", (text) => (output += text));
    return { output: () => output, close: () => xev.kill("SIGTERM") };
  }

  photograph(file) {
    this.run("import", ["-window", "root", file]);
  }

  run(program, args, input) {
    return run(program, args, { input, env: { ...process.env, DISPLAY: this.name } });
  }

  #xdotool(args, input) {
    return this.run("xdotool", args, input);
  }
}
