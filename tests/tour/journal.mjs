// What the tour tells: a numbered line for every step, and a photograph of it.

import fs from "node:fs";
import path from "node:path";

export class Journal {
  #folder;
  #number = 0;
  #title = "Getting ready";

  /** Empties the folder of an earlier tour's photographs, and of nothing else. */
  constructor(folder) {
    this.#folder = folder;
    fs.mkdirSync(folder, { recursive: true });
    for (const name of fs.readdirSync(folder)) {
      if (/^[0-9]{2}[a-z]?-.*\.png$/.test(name)) fs.rmSync(path.join(folder, name));
    }
  }

  /** Does the step, whose result is the sentence that was read, if any, and tells about it. */
  async step(display, title, action) {
    this.#number += 1;
    this.#title = title;
    const said = await action();
    display.photograph(this.file());
    this.#print(`${this.#prefix()}  ${title}`);
    if (said) this.#print(`      "${said}"`);
  }

  /** Where the photograph of this step belongs, or a second one taken on the way. */
  file(detail = "") {
    const words = detail === "" ? this.#title : `${this.#title} ${detail}`;
    const slug = words.toLowerCase().replace(/[^a-z0-9]+/g, "-").replace(/^-|-$/g, "");
    return path.join(this.#folder, `${this.#prefix()}${detail && "a"}-${slug.slice(0, 70)}.png`);
  }

  fail(error) {
    this.#print(`\nFAILED at step ${this.#prefix()}, ${this.#title}:\n${error.stack}`);
  }

  finish(seconds) {
    this.#print(`\n${this.#number} steps in ${seconds} s; photographs in ${this.#folder}`);
  }

  #prefix() {
    return String(this.#number).padStart(2, "0");
  }

  #print(text) {
    process.stdout.write(`${text}\n`);
  }
}
