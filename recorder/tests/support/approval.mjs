// The approval service for tests: the real one behind real HTTP, in this process, with a clock that
// can be set and answers that can be lost on their way.

import { once } from "node:events";
import http from "node:http";
import { createApi } from "../../approval/api.mjs";
import { Ledger, emptyState } from "../../approval/ledger.mjs";

/** A clock that only moves when told to; starts at the present. */
export function makeClock(start = Date.now()) {
  let time = start;
  const now = () => time;
  now.advance = (milliseconds) => {
    time += milliseconds;
  };
  return now;
}

/** The service, until the test is over, and what a test may do to it. */
export async function serveApprovals(t, options = {}) {
  const { now = Date.now, intervalMs = 0, leaseMs = 3600000 } = options;
  const state = emptyState();
  const ledger = new Ledger({ state, save() {}, now, intervalMs, leaseMs, account: "owner" });
  let fate = "delivered";
  let noteHeld;
  const heldRequest = new Promise((resolve) => (noteHeld = resolve));
  const server = http.createServer();
  const origin = () => `http://127.0.0.1:${server.address().port}`;
  const answer = createApi(ledger, origin);

  server.on("request", async (request, response) => {
    if (fate === "held") return noteHeld();
    if (fate === "lost") {
      fate = "delivered";
      // Everything happens as usual, only that nothing of it arrives.
      response.writeHead = () => response;
      response.end = () => request.socket.destroy();
    }
    await answer(request, response);
  });
  server.listen(0, "127.0.0.1");
  await once(server, "listening");

  const close = () => {
    server.close();
    server.closeAllConnections();
  };
  t.after(close);
  return {
    origin: origin(),
    ledger,
    state,
    approveAll: () => {
      for (const { userCode } of ledger.pendingRequests()) ledger.decide(userCode, true);
    },
    loseNextAnswer: () => (fate = "lost"),
    holdAnswers: () => (fate = "held"),
    /** Settles when the first request was held. */
    heldRequest,
    close,
  };
}
