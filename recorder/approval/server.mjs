// A small account approval service for one owner, on the loopback address only.
//
//   node server.mjs --port N --state FILE
//                   [--account NAME] [--interval SECONDS] [--lease SECONDS]
//
// Port 0 takes a free one. When it serves, one JSON line with its address goes to standard output;
// it ends on SIGTERM or SIGINT. Exit 2: wrong arguments; exit 1: port or state file unusable.

import http from "node:http";
import { parseArgs } from "node:util";
import { createApi } from "./api.mjs";
import { Ledger } from "./ledger.mjs";
import { loadState, saverFor } from "./ledger-file.mjs";

const kDefaults = { port: "3999", account: "owner", interval: "5", lease: "2592000" };

function fail(status, sentence) {
  process.stderr.write(`${sentence}\n`);
  process.exit(status);
}

function readOptions() {
  try {
    const { values } = parseArgs({
      options: Object.fromEntries(
        ["port", "state", "account", "interval", "lease"].map((name) => [name, { type: "string" }]),
      ),
    });
    const options = { ...kDefaults, ...values };
    const [port, interval, lease] = ["port", "interval", "lease"].map((name) => {
      if (!/^[0-9]{1,9}$/.test(options[name])) throw new Error(`--${name} must be a number`);
      return Number(options[name]);
    });
    if (!options.state) throw new Error("--state FILE is required");
    return { ...options, port, intervalMs: interval * 1000, leaseMs: lease * 1000 };
  } catch (error) {
    return fail(2, error.message);
  }
}

const options = readOptions();

function openLedger() {
  try {
    const state = loadState(options.state);
    return new Ledger({ ...options, state, save: saverFor(options.state) });
  } catch (error) {
    return fail(1, `The state file cannot be used: ${error.message}`);
  }
}

const server = http.createServer(createApi(openLedger(), () => origin()));
const origin = () => `http://127.0.0.1:${server.address().port}`;

server.on("error", (error) => fail(1, `Port ${options.port} cannot be used: ${error.code}`));
server.listen(options.port, "127.0.0.1", () => {
  process.stdout.write(`${JSON.stringify({ origin: origin() })}\n`);
});

for (const signal of ["SIGTERM", "SIGINT"]) {
  process.once(signal, () => {
    server.close();
    server.closeAllConnections();
  });
}
