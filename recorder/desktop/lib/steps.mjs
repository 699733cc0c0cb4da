// Work that must survive being cut off at any moment is written as a list of named steps, run in
// order: { name, run(context) }. The list is data, so that a test can end the process before any
// one of them.

export async function runSteps(steps, context, beforeStep = () => {}) {
  for (const { name, run } of steps) {
    await beforeStep(name);
    await run(context);
  }
}
