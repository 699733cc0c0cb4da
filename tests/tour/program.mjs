// The program under the tour's hands: started like a person would, then looked at through the
// observer and used with mouse and keys.

import assert from "node:assert/strict";
import { spawn } from "node:child_process";
import { once } from "node:events";
import { isAlive } from "./processes.mjs";
import { Observer } from "./sight.mjs";
import { eventually } from "./waiting.mjs";

export const kSettings = "Veltrix Home DVR";
export const kSetup = "TLS and Account Setup";
const kTitleBarHeight = 30;
const kWorking = "Working...";

let started = 0;

/** Runs the program unobserved to its end: { status, output }. */
export async function runProgram({ executable, scratch, display }, args) {
  const child = spawn(executable, args, {
    env: scratch.environment(display),
    cwd: scratch.path("home"),
    stdio: ["ignore", "pipe", "inherit"],
  });
  let output = "";
  child.stdout.setEncoding("utf8").on("data", (text) => (output += text));
  const [status] = await once(child, "close");
  return { status, output };
}

export class Program {
  #observer;
  #socket;
  #child;
  #output = "";

  /** Starts the program and waits for its settings window. */
  static async start(stage, args = []) {
    const program = Program.spawn(stage, args);
    await program.ready();
    return program;
  }

  /** Starts the program without waiting for anything. */
  static spawn({ executable, observer, scratch, display }, args = []) {
    const program = new Program();
    program.#socket = scratch.path(`observer-${++started}`);
    const env = {
      ...scratch.environment(display),
      LD_PRELOAD: observer,
      VELTRIX_TOUR_SOCKET: program.#socket,
    };
    program.display = display;
    program.#child = spawn(executable, args, {
      env,
      cwd: scratch.path("home"),
      stdio: ["ignore", "pipe", "inherit"],
    });
    program.#child.stdout.setEncoding("utf8").on("data", (text) => (program.#output += text));
    program.ended = once(program.#child, "close").then(([status]) => status);
    return program;
  }

  /** Waits for the settings window, which must not be there before. */
  async ready() {
    await eventually(() => {
      this.#requireRunning();
      return this.display.hasWindow(kSettings);
    }, "the settings window");
    this.#observer = await Observer.connect(this.#socket);
  }

  /** Ends it by force, as a crash would, and waits until nothing of it is to be seen. */
  async kill() {
    this.#child.kill("SIGKILL");
    await this.gone();
  }

  async gone() {
    await this.ended;
    this.#observer?.close();
    await eventually(() => !this.display.hasWindow(kSettings), "the window gone");
  }

  get pid() {
    return this.#child.pid;
  }

  /** What it has written to its standard output. */
  get output() {
    return this.#output;
  }

  look() {
    this.#requireRunning();
    return this.#observer.look();
  }

  /** Looks until `find`, given what can be seen, gives something or holds. */
  see(find, what) {
    return eventually(async () => {
      const sight = await this.look();
      try {
        return find(sight);
      } catch {
        return null;
      }
    }, what);
  }

  async sentence(title = kSettings) {
    return (await this.look()).window(title).sentence();
  }

  /** The text of a field. */
  async text(label, title = kSettings) {
    return (await this.look()).window(title).field(label).text;
  }

  /**
   * Waits for exactly this sentence on the window's status line; any other than `before` and
   * "Working..." fails at once.
   */
  async expectSentence(expected, before, title = kSettings) {
    await eventually(async () => {
      const sentence = await this.sentence(title);
      if (sentence === expected) return true;
      if (sentence === before || sentence === kWorking) return false;
      throw new Error(`the status line says\n  ${sentence}\nand not\n  ${expected}`);
    }, `the sentence "${expected}"`);
    return expected;
  }

  /** Does something that must bring up this sentence, which must not be there already. */
  async bringing(expected, title, gesture) {
    const before = await this.sentence(title);
    if (before === expected) throw new Error(`already to be read before: ${expected}`);
    await gesture();
    return this.expectSentence(expected, before, title);
  }

  /** The same for an operator action, whose outcome is to be read in the tool tip too. */
  async outcome(expected, gesture) {
    await this.bringing(expected, kSettings, gesture);
    assert.equal((await this.look()).statusItem().toolTip, expected);
    return expected;
  }

  async press(button, title = kSettings) {
    await this.#clickEnabled((sight) => sight.window(title).button(button), `"${button}"`);
  }

  /** Presses the "Choose..." beside a field and waits for the open panel. */
  async pressChooser(label, title = kSettings) {
    await this.#clickEnabled((sight) => sight.window(title).chooserOf(label), `"${label}"`);
    await this.see((sight) => sight.modalWindow(), "the open panel");
  }

  async expectNothingModal() {
    await this.see((sight) => !sight.modalWindow(), "nothing modal");
  }

  async tick(checkBox, on, title = kSetup) {
    const find = (sight) => sight.window(title).checkBox(checkBox);
    if (find(await this.look()).on !== on) await this.#clickEnabled(find, `"${checkBox}"`);
    await this.see((sight) => find(sight).on === on, `"${checkBox}" ${on ? "on" : "off"}`);
  }

  /** Replaces the text of a field; a secure one shows a bullet for every character. */
  async type(label, text, title = kSettings) {
    const find = (sight) => sight.window(title).field(label);
    await this.#clickEnabled(find, `field "${label}"`);
    this.display.press("alt+a");
    this.display.press("BackSpace");
    await this.see((sight) => find(sight).text === "", `"${label}" empty`);
    this.display.type(text);
    const shown = (kind) => (kind === "secureField" ? "\u2022".repeat([...text].length) : text);
    await this.see((sight) => find(sight).text === shown(find(sight).kind), `"${label}" filled`);
  }

  /** Opens the status item's menu and returns its items. */
  async openMenu() {
    this.display.click((await this.look()).statusItem().frame);
    return this.see((sight) => sight.menuItems().length > 0 && sight.menuItems(), "the menu");
  }

  /** Closes the menu without choosing anything. */
  async dismissMenu() {
    this.display.press("Escape");
    await this.see((sight) => sight.menuItems().length === 0, "the menu closed");
  }

  async choose(item) {
    await this.#clickMenuItem(item);
    await this.see((sight) => sight.menuItems().length === 0, "the menu closed");
  }

  /** Waits for an alert that asks and offers exactly this. */
  async expectAlert({ question, text, safe, proceed }) {
    const alert = await this.see((sight) => sight.findAlert(question), `the alert "${question}"`);
    if (!alert.texts().includes(text)) throw new Error(`the alert says ${alert.texts()}`);
    const [left, right] = [proceed, safe].map((title) => alert.button(title).frame.x);
    if (left >= right) throw new Error("the safe button is not the one at the right");
  }

  async expectNoAlert(question) {
    await this.see((sight) => !sight.findAlert(question), `no alert "${question}"`);
  }

  async decline({ question }) {
    this.display.press("Return");
    await this.expectNoAlert(question);
  }

  async accept({ question, proceed }) {
    await this.#clickEnabled((sight) => sight.findAlert(question).button(proceed), proceed);
  }

  /** Brings a window whose title can be seen to the front. */
  async raise(title) {
    const { frame } = (await this.look()).window(title);
    this.display.click({ ...frame, height: kTitleBarHeight });
    await eventually(() => this.display.isAbove(title, kSettings), `"${title}" in front`);
  }

  /** Clicks the close button of the title bar, without waiting for anything. */
  async clickClose(title = kSettings) {
    this.display.click((await this.look()).window(title).closer().frame);
  }

  async isShown(title) {
    return (await this.look()).findWindow(title) !== undefined;
  }

  async expectShown(title, shown = true) {
    const what = `"${title}" ${shown ? "shown" : "gone"}`;
    await this.see((sight) => (sight.findWindow(title) !== undefined) === shown, what);
  }

  /** Quits by the menu and waits for the end. */
  async quit() {
    await this.#clickMenuItem("Quit Desktop App");
    const status = await this.ended;
    if (status !== 0) throw new Error(`the program ended with ${status}`);
    this.#observer.close();
  }

  async #clickMenuItem(item) {
    await this.openMenu();
    const { enabled, frame } = (await this.look()).menuItem(item);
    if (!enabled) throw new Error(`the menu item "${item}" is disabled`);
    this.display.click(frame);
  }

  async #clickEnabled(find, what) {
    const target = await this.see((sight) => find(sight).enabled && find(sight), `${what} enabled`);
    this.display.click(target.frame);
  }

  #requireRunning() {
    if (!isAlive(this.#child.pid)) throw new Error("the program ended");
  }
}
