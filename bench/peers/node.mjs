// Node's child_process. Speaks as measure/Measure.h says.

import { spawn } from "node:child_process";
import { createInterface } from "node:readline";

const [child, ...childArguments] = process.argv.slice(2);
const names = process.env.BENCH_ENVIRONMENT.split(" ");
const env = Object.fromEntries(
  names.filter((name) => name in process.env).map((name) => [name, process.env[name]]),
);
const kExpected = '{"ok":true,"code":"running"}\n';

function take() {
  const begin = process.hrtime.bigint();
  return new Promise((resolve, reject) => {
    const running = spawn(child, childArguments, { env, stdio: ["pipe", "pipe", "ignore"] });
    let text = "";
    running.stdin.end();
    running.stdout.setEncoding("utf8");
    running.stdout.on("data", (piece) => {
      text += piece;
    });
    running.on("error", reject);
    running.on("close", () => {
      const duration = process.hrtime.bigint() - begin;
      if (text === kExpected) resolve(duration);
      else reject(new Error("child_process failed"));
    });
  });
}

for await (const line of createInterface({ input: process.stdin })) {
  let report = "";
  for (let rounds = Number(line); rounds > 0; rounds -= 1) report += `peer ${await take()}\n`;
  process.stdout.write(`${report}done\n`);
}
