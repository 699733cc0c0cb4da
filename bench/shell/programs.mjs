// The programs that are measured, and a display and a home for them.

import path from "node:path";
import { Display } from "../../tests/tour/display.mjs";
import { Scratch } from "../../tests/tour/scratch.mjs";

export function programs(build) {
  const product = "Veltrix Home DVR";
  return {
    product: { title: product, file: path.join(build, `${product}.app`, product) },
    withSymbols: { title: product, file: path.join(build, "bench", `${product}.app`, product) },
    hello: { title: "Hello", file: path.join(build, "bench/Hello.app/Hello") },
    stock: { title: "Hello", file: path.join(build, "bench/HelloStock.app/HelloStock") },
  };
}

/** Calls `measure(environment, display)`, and ends all that it started, however that ended. */
export async function onDisplay(measure) {
  const scratch = new Scratch();
  let display = null;
  try {
    display = await Display.open();
    return await measure(scratch.environment(display), display, scratch);
  } finally {
    await scratch.remove();
    display?.close();
    await display?.closed();
  }
}
