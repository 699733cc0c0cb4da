// stop: the gateway first, so that nobody is let in while the server goes.

import { refuse } from "../lib/reply.mjs";
import { stopGateway } from "./gateway-process.mjs";
import { stopServer } from "./server-process.mjs";
import { withServiceLock } from "./service-lock.mjs";

export function stop(layout) {
  return withServiceLock(layout, async () => {
    const gatewayGone = await stopGateway(layout);
    const serverGone = await stopServer(layout);
    if (!gatewayGone || !serverGone) refuse("operator_failed");
    return { ok: true, code: "stopped" };
  });
}
