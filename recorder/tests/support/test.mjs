// A test that waits for something that never comes fails, and still cleans up after itself.

import nodeTest from "node:test";

const kPatience = 60000; // milliseconds; only ever used up by a test that fails

export const test = (name, body) => nodeTest(name, { timeout: kPatience }, body);
