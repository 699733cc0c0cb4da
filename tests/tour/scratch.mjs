// A home folder for nobody: everything that the program and the recorder may write on the tour is
// written below it, and it goes when the tour is over.

import fs from "node:fs";
import os from "node:os";
import path from "node:path";
import { kill, processesThatMention } from "./processes.mjs";
import { eventually } from "./waiting.mjs";

export class Scratch {
  constructor() {
    this.folder = fs.realpathSync(fs.mkdtempSync(path.join(os.tmpdir(), "veltrix-tour-")));
    for (const name of ["home", "run", "temporary", "bin", "Defaults", "Library"]) {
      fs.mkdirSync(this.path(name), { mode: 0o700 });
    }
    // GNUstep takes a home from the password database; only this file can move it.
    fs.writeFileSync(
      this.path("gnustep.conf"),
      `GNUSTEP_USER_DEFAULTS_DIR=${this.path("Defaults")}\n` +
        `GNUSTEP_USER_DIR_LIBRARY=${this.path("Library")}\n`,
    );
    this.#placeOpener();
  }

  path(...parts) {
    return path.join(this.folder, ...parts);
  }

  // What the program asks the desktop to open goes, one per line, to a list.
  #placeOpener() {
    fs.writeFileSync(this.#openedList, "");
    const commands = `#!/bin/sh\nprintf '%s\\n' "$1" >>'${this.#openedList}'\n`;
    fs.writeFileSync(this.path("bin", "xdg-open"), commands, { mode: 0o755 });
  }

  get #openedList() {
    return this.path("opened");
  }

  opened() {
    return fs.readFileSync(this.#openedList, "utf8").split("\n").slice(0, -1);
  }

  /** What a person's session would have, and a few things that no script may be given. */
  environment(display) {
    return {
      PATH: `${this.path("bin")}:/usr/bin:/bin`,
      HOME: this.path("home"),
      USER: os.userInfo().username,
      LANG: "C.UTF-8",
      TMPDIR: this.path("temporary"),
      TMP: this.path("temporary"), // where GNUstep's processes find each other
      XDG_RUNTIME_DIR: this.path("run"),
      GNUSTEP_CONFIG_FILE: this.path("gnustep.conf"),
      DISPLAY: display.name,
      DOCKER_HOST: "unix:///nowhere",
      ACCESS_TOKEN: "for nobody but the shell",
    };
  }

  /** Every file below the folder, with its bytes. */
  files(folder = this.folder) {
    return fs
      .readdirSync(folder, { recursive: true, withFileTypes: true })
      .filter((entry) => entry.isFile())
      .map((entry) => path.join(entry.parentPath, entry.name))
      .sort()
      .map((file) => ({ file, bytes: fs.readFileSync(file) }));
  }

  /** Ends whatever still runs on behalf of the tour, detached or not, and removes the folder. */
  async remove() {
    await eventually(() => {
      const left = processesThatMention(this.folder);
      kill(left);
      return left.length === 0;
    }, "the end of everything that was started");
    fs.rmSync(this.folder, { recursive: true, force: true });
  }
}
