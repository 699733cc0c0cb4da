// first-run.mjs --home HOME
// The setup script: answers every request line on standard input with one reply line on standard
// output, in order, until the input ends. SETUP.md beside this folder is its contract.

import { homeArgument } from "./lib/arguments.mjs";
import { encodeReply, writeWhole } from "./lib/reply.mjs";
import { linesOf, parseRequest } from "./setup/requests.mjs";
import { SetupSession, kFailureCode } from "./setup/session.mjs";

const kFailure = Object.freeze({ ok: false, code: kFailureCode });

const session = openSession();

function openSession() {
  try {
    return new SetupSession(homeArgument());
  } catch {
    // Called wrongly: there is still a reader to be told, request by request.
    return null;
  }
}

function leave(status) {
  session?.end();
  process.exit(status);
}

process.once("SIGTERM", () => leave(0));
session?.begin();

for await (const line of linesOf(process.stdin)) {
  const request = parseRequest(line);
  const reply = request && session ? await session.answer(request) : kFailure;
  writeWhole(1, `${encodeReply(reply, kFailureCode)}\n`);
}
leave(0);
