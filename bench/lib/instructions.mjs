// Whose instructions a launch consists of: valgrind counts them one by one up to the moment in
// which the window is shown, and the linker's map tells from which of our folders each comes.

import { execFileSync, spawn } from "node:child_process";
import fs from "node:fs";
import os from "node:os";
import path from "node:path";
import { createInterface } from "node:readline";
import { kWindows } from "./desktop.mjs";
import { build } from "./program.mjs";

/** Where the text of each object file of ours begins and ends: [begin, end, isSupplied]. */
function textOf(map) {
  const ranges = [];
  const pattern = /^ \.text\S*\s+0x([0-9a-f]+)\s+0x([0-9a-f]+) (.*)$/gm;
  const joined = map.replaceAll(/(\.text\S*)\n/g, "$1");
  for (const [, address, size, object] of joined.matchAll(pattern)) {
    const begin = parseInt(address, 16);
    if (begin === 0 || !/veltrix|bench_desktop/.test(object)) continue;
    ranges.push([begin, begin + parseInt(size, 16), /veltrix_gnustep/.test(object)]);
  }
  return ranges;
}

function addressOfMain(file) {
  const symbols = execFileSync("nm", [file], { encoding: "utf8" });
  const [, address] = /^([0-9a-f]+) T main$/m.exec(symbols);
  return parseInt(address, 16);
}

/** What each instruction itself cost: calls `at(object, function, address, cost)` for each. */
function readProfile(text, at) {
  const names = new Map();
  const functions = new Map();
  let object = "";
  let name = "";
  let isCall = false;
  for (const line of text.split("\n")) {
    const named = /^ob=\((\d+)\)(?: (.*))?$/.exec(line);
    if (named) {
      if (named[2]) names.set(named[1], named[2]);
      object = names.get(named[1]) ?? "";
    } else if (/^c?fn=/.test(line)) {
      const [, called, number, given] = /^(c?)fn=\((\d+)\)(?: (.*))?$/.exec(line);
      if (given) functions.set(number, given);
      if (called === "") name = functions.get(number);
    } else if (/^cob=\((\d+)\) /.test(line)) {
      const [, number, given] = /^cob=\((\d+)\) (.*)$/.exec(line);
      names.set(number, given);
    } else if (line.startsWith("calls=")) {
      isCall = true;
    } else if (line.startsWith("0x")) {
      const [address, , cost] = line.split(" ");
      if (!isCall) at(object, name, parseInt(address, 16), Number(cost));
      isCall = false;
    }
  }
}

async function profileOfLaunch({ title, file }, env, folder) {
  const output = path.join(folder, "profile");
  const tool = ["/usr/bin/valgrind", "--tool=callgrind", "--dump-instr=yes", "--compress-pos=no"];
  const pipe = `--vgdb-prefix=${folder}/vgdb-pipe`;
  const args = [title, ...tool, pipe, `--callgrind-out-file=${output}`, file];
  const watch = spawn(kWindows, args, {
    env: { ...env, TMPDIR: folder },
    stdio: ["pipe", "pipe", "ignore"],
  });
  let pid = "";
  for await (const line of createInterface({ input: watch.stdout })) {
    const [what, value] = line.split(" ");
    if (what === "started") pid = value;
    if (what === "titled") {
      execFileSync("vgdb", [`--pid=${pid}`, pipe, "dump"], { env, stdio: "ignore" });
      watch.stdin.end();
    }
  }
  const file1 = `${output}.1`;
  if (!fs.existsSync(file1)) throw new Error("valgrind has left no profile");
  return fs.readFileSync(file1, "utf8");
}

/** The shares of the companion and of gnustep/ among all instructions, and their total. */
export async function countOwnInstructions(program, env) {
  const folder = fs.mkdtempSync(path.join(os.tmpdir(), "veltrix-bench-"));
  try {
    const profile = await profileOfLaunch(program, env, folder);
    const ranges = textOf(fs.readFileSync(path.join(build, "bench/desktop.map"), "utf8"));
    let [total, ours, supplied] = [0, 0, 0];
    const own = [];
    let entry = Infinity; // where main() begins in the running program
    readProfile(profile, (object, name, address, cost) => {
      total += cost;
      if (object !== program.file) return;
      own.push([address, cost]);
      if (name === "main") entry = Math.min(entry, address);
    });
    const base = entry - addressOfMain(program.file);
    if (!Number.isFinite(base)) throw new Error("the profile knows no main()");
    for (const [address, cost] of own) {
      const at = address - base;
      const found = ranges.find(([first, last]) => first <= at && at < last);
      if (found?.[2]) supplied += cost;
      else ours += cost;
    }
    if (total === 0 || ours === 0 || supplied === 0) throw new Error("the profile is empty");
    return { total: Math.round(total / 1e6), ours: ours / total, supplied: supplied / total };
  } finally {
    fs.rmSync(folder, { recursive: true, force: true });
  }
}
