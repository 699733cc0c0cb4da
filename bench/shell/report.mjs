// What the three drivers share: their arguments, their build, and how a section is printed.

import fs from "node:fs";
import path from "node:path";
import { spawnSync } from "node:child_process";

/** { quick, build }: the short run, and the build folder, with what is measured built into it. */
export function prepare(target) {
  const [folder = "build-bench"] = process.argv.slice(2).filter((given) => given !== "--quick");
  const build = path.resolve(folder);
  if (!fs.existsSync(path.join(build, "CMakeCache.txt"))) {
    throw new Error(`no build in ${build}: scripts/build --type Release ${folder}`);
  }
  command("cmake", ["-DVELTRIX_BENCH=ON", build]);
  command("cmake", ["--build", build, "--target", target]);
  return { quick: process.argv.includes("--quick"), build };
}

export function command(program, args, options = {}) {
  const ended = spawnSync(program, args, { encoding: "utf8", maxBuffer: 1 << 28, ...options });
  if (ended.error) throw ended.error;
  if (ended.status !== 0) {
    throw new Error(`${program} ended with ${ended.status}: ${ended.stdout}${ended.stderr}`);
  }
  return ended.stdout;
}

export function quantile(values, share) {
  const sorted = [...values].sort((a, b) => a - b);
  const at = (sorted.length - 1) * share;
  const below = sorted[Math.floor(at)];
  return below + (sorted[Math.ceil(at)] - below) * (at - Math.floor(at));
}

export const median = (values) => quantile(values, 0.5);

/** The median, and between which values the middle half lies. */
export function spread(values, digits = 1) {
  const [low, middle, high] = [0.25, 0.5, 0.75].map((q) => quantile(values, q).toFixed(digits));
  return `${middle} (${low} to ${high})`;
}

/** How far apart medians of other samples of the same rounds would lie: 95 of 100 ratios. */
export function ratioOfMedians(values, baseline) {
  const again = (list) => median(list.map(() => list[Math.floor(Math.random() * list.length)]));
  const ratios = Array.from({ length: 2000 }, () => again(values) / again(baseline));
  const ratio = median(values) / median(baseline);
  const range = [0.025, 0.975].map((q) => quantile(ratios, q).toFixed(2));
  return { ratio, text: `${ratio.toFixed(2)} (${range[0]} to ${range[1]})` };
}

export function shuffled(list) {
  const rest = [...list];
  return list.map(() => rest.splice(Math.floor(Math.random() * rest.length), 1)[0]);
}

export function section(title, sentences, head, rows, verdict) {
  const line = (cells) => `| ${cells.join(" | ")} |`;
  const rule = head.map((_, column) => (column === 0 ? "---" : "---:"));
  const table = [head, rule, ...rows].map(line);
  console.log([`## ${title}`, "", sentences, "", ...table, "", verdict, ""].join("\n"));
}

export const metOrNot = (met) => (met ? "met" : "not met");
