// Nothing in the tour waits for a fixed time, only for a condition, with a deadline that is used up
// by a failure alone.

import { setTimeout as delay } from "node:timers/promises";

const kPatience = 30000; // milliseconds
const kInterval = 15; // milliseconds

/** The first value of `condition`, which may be asynchronous, that counts as true. */
export async function eventually(condition, what) {
  const deadline = performance.now() + kPatience;
  for (;;) {
    const value = await condition();
    if (value) return value;
    if (performance.now() >= deadline) throw new Error(`never happened: ${what}`);
    await delay(kInterval);
  }
}
