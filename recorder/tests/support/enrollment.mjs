// Account approvals under test: through the setup script, or by its rules in this process.

import assert from "node:assert/strict";
import { ApprovalClient } from "../../desktop/setup/approval-client.mjs";
import { Enrollment } from "../../desktop/setup/enrollment.mjs";
import { serveApprovals } from "./approval.mjs";
import { SetupScript, kInstallationId, kStartValues, makeHome } from "./setup.mjs";

export const kOrigin = "https://dvr.example.org:8443";
export const kYear = 365 * 24 * 60 * 60 * 1000; // milliseconds

/** An installation, the approval service it is told to use, and a setup script at work on it. */
export async function makeCase(t, serviceOptions) {
  const approvals = await serveApprovals(t, serviceOptions);
  const home = makeHome({ origin: kOrigin, DVR_APPROVAL_ORIGIN: approvals.origin });
  return { approvals, home, setup: new SetupScript(t, home.layout.home) };
}

export async function pair({ approvals, setup }) {
  assert.equal(await setup.code("enrollment.start", kStartValues), "enrollment_pending");
  approvals.approveAll();
  assert.equal(await setup.code("enrollment.poll"), "enrollment_paired");
}

export async function makePairedCase(t, serviceOptions) {
  const parts = await makeCase(t, serviceOptions);
  await pair(parts);
  return parts;
}

/** The rules by themselves, on a clock that can be set. */
export function makeEnrollment({ home, origin, now, answerLimit }) {
  const installation = {
    origin: kOrigin,
    installationId: kInstallationId,
    storage: home.storage,
    approvalOrigin: origin,
  };
  const client = new ApprovalClient(origin, answerLimit);
  return new Enrollment({ layout: home.layout, installation, client, now });
}

/** The outcome code of an action of these rules. */
export async function codeOf(action) {
  try {
    return (await action).code;
  } catch (error) {
    return error.code;
  }
}
