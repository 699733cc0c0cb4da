// The command lines of the scripts and of the recorder's own processes.

import { isUsablePath, layoutOf } from "./layout.mjs";
import { refuse } from "./reply.mjs";

/** "WORD --home HOME": { word, layout }. */
export function commandLine(argv = process.argv.slice(2)) {
  const [word, ...rest] = argv;
  return { word, layout: homeArgument(rest) };
}

/** "--home HOME": the layout of that home. */
export function homeArgument(argv = process.argv.slice(2)) {
  const [option, home] = argv;
  const valid = argv.length === 2 && option === "--home" && isUsablePath(home);
  return valid ? layoutOf(home) : refuse("operator_failed");
}
