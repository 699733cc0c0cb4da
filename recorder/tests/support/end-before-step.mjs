// end-before-step.mjs MODULE FUNCTION ARGUMENT STEP
// Calls the module's function with the argument (JSON) and dies, as in a power cut, ahead of the
// step.

import { pathToFileURL } from "node:url";

const [module, name, argument, fatalStep] = process.argv.slice(2);
const functions = await import(pathToFileURL(module));
await functions[name](JSON.parse(argument), (step) => {
  if (step === fatalStep) process.kill(process.pid, "SIGKILL");
});
