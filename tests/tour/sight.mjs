// What can be seen: asks the observer inside the program, and finds things in its answers.

import net from "node:net";

const kSettingsTitle = "Veltrix Home DVR";

/** One thing that a person could point at, or an error that names what was looked for. */
function only(found, what) {
  if (found.length === 1) return found[0];
  throw new Error(`${found.length === 0 ? "not to be seen" : "seen more than once"}: ${what}`);
}

class Window {
  constructor({ views, items, ...members }) {
    Object.assign(this, members);
    this.views = views;
    this.items = items;
  }

  #views(kind, member, value) {
    return this.views.filter((view) => view.kind === kind && view[member] === value);
  }

  has(kind, member, value) {
    return this.#views(kind, member, value).length > 0;
  }

  button(title) {
    return only(this.#views("button", "title", title), `button "${title}"`);
  }

  /** One of the "Choose..." buttons: the one beside this field. */
  chooserOf(label) {
    const { y, height } = this.field(label).frame;
    const beside = this.#views("button", "title", "Choose...").filter(
      ({ frame }) => Math.abs(frame.y + frame.height / 2 - (y + height / 2)) < height / 2,
    );
    return only(beside, `"Choose..." beside "${label}"`);
  }

  checkBox(title) {
    return only(this.#views("checkBox", "title", title), `check box "${title}"`);
  }

  field(label) {
    const fields = [...this.#views("field", "label", label)];
    return only([...fields, ...this.#views("secureField", "label", label)], `field "${label}"`);
  }

  /** The button of the title bar. */
  closer() {
    return only(this.#views("button", "action", "performClose:"), "close button");
  }

  texts() {
    return this.views.filter(({ kind }) => kind === "text").map(({ text }) => text);
  }

  sentence() {
    return only(this.#views("text", "label", "Status"), "status line").text;
  }

  /** Everything that a person can press, tick or type into, but for the title bar. */
  controls() {
    const kinds = ["button", "checkBox", "field", "secureField"];
    const inTitleBar = ["performClose:", "performMiniaturize:", "miniaturize:"];
    return this.views.filter(
      ({ kind, action }) => kinds.includes(kind) && !inTitleBar.includes(action),
    );
  }
}

export class Sight {
  constructor(windows) {
    this.windows = windows.map((window) => new Window(window));
  }

  /** A window with a status line, by its title; alerts may bear the program's name too. */
  findWindow(title) {
    return this.windows.find(
      (window) => window.title === title && window.has("text", "label", "Status"),
    );
  }

  window(title = kSettingsTitle) {
    return this.findWindow(title) ?? only([], `window "${title}"`);
  }

  statusItem() {
    const items = this.windows.flatMap(({ views }) => views);
    return only(items.filter(({ kind }) => kind === "statusItem"), "status item");
  }

  /** The open menu's items; none while no menu is open. */
  menuItems() {
    return this.windows.flatMap(({ items }) => items);
  }

  menuItem(title) {
    return only(this.menuItems().filter((item) => item.title === title), `menu item "${title}"`);
  }

  modalWindow() {
    return this.windows.find(({ modal }) => modal);
  }

  /** The alert that asks `question`. */
  findAlert(question) {
    return this.windows.find((window) => window.modal && window.texts().includes(question));
  }
}

/** The line to the observer. One question at a time. */
export class Observer {
  #socket;
  #unread = "";
  #waiting = null;

  static async connect(path) {
    const observer = new Observer();
    observer.#socket = net.connect(path).setEncoding("utf8");
    observer.#socket.on("data", (text) => observer.#take(text));
    observer.#socket.on("close", () => observer.#settle(null));
    await new Promise((resolve, reject) => {
      observer.#socket.once("connect", resolve).once("error", reject);
    });
    observer.#socket.on("error", () => {}); // "close" follows
    return observer;
  }

  async look() {
    if (this.#socket.destroyed) throw new Error("the program ended");
    const answer = new Promise((resolve, reject) => (this.#waiting = { resolve, reject }));
    this.#socket.write("\n");
    return new Sight(await answer);
  }

  close() {
    this.#socket.destroy();
  }

  #take(text) {
    this.#unread += text;
    if (!this.#unread.endsWith("\n")) return;
    const line = this.#unread;
    this.#unread = "";
    this.#settle(JSON.parse(line));
  }

  #settle(windows) {
    const waiting = this.#waiting;
    this.#waiting = null;
    if (windows === null) waiting?.reject(new Error("the program ended"));
    else waiting.resolve(windows);
  }
}
