// install.mjs < payload
// Makes a new installation out of the bundle and starts nothing. The payload is one JSON object of
// four strings: "home", "storage", "origin", "retentionDays".

import { install } from "./install/install.mjs";
import { readRequest } from "./install/request.mjs";
import { runScript } from "./lib/reply.mjs";

await runScript("bundle_setup_failed", async () => install(await readRequest(process.stdin)));
