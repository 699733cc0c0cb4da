// The programs that are measured, and a display and a home for them.

import path from "node:path";
import { Display } from "../../tests/tour/display.mjs";
import { Scratch } from "../../tests/tour/scratch.mjs";
import { build } from "./program.mjs";

const kProduct = "Veltrix Home DVR";

export const product = { title: kProduct, file: path.join(build, `${kProduct}.app`, kProduct) };
/** The same, not stripped. */
export const productWithSymbols = {
  title: kProduct,
  file: path.join(build, "bench", `${kProduct}.app`, kProduct),
};
/** One window with one field, on what gnustep/ supplies like the product. */
export const hello = { title: "Hello", file: path.join(build, "bench/Hello.app/Hello") };
/** The same on GNUstep as it is. */
export const stock = { title: "Hello", file: path.join(build, "bench/HelloStock.app/HelloStock") };

/** Starts a program and tells, line by line, when its windows come. */
export const kWindows = path.join(build, "bench/veltrix_bench_windows");

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
