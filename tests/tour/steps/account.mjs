// The setup window's second half: the approval of the account and the recorder's login, and how the
// window closes.

import assert from "node:assert/strict";
import { randomBytes } from "node:crypto";
import fs from "node:fs";
import { layoutOf } from "../../../recorder/desktop/lib/layout.mjs";
import { verifyLogin } from "../../../recorder/desktop/lib/login.mjs";
import { ApprovalService, freePort } from "../network.mjs";
import { freeze, resume, scriptOf } from "../processes.mjs";
import { kSettings, kSetup } from "../program.mjs";
import { eventually } from "../waiting.mjs";
import { editSettings, install } from "./installing.mjs";
import { assertNoPasswordInProcesses } from "./secrets.mjs";
import { expectOpened } from "./service.mjs";
import { assertEmpty, openSetup } from "./tls.mjs";
import { assertEnvironment } from "./window.mjs";

const kUsername = "DVR username";
const kPassword = "DVR password (15-128 bytes)";
const kTrustProxy = "Allow this computer's TLS gateway on loopback";
const kSetupNames = ["PATH", "HOME", "USER", "TMPDIR", "LANG"];

const kValidated = "Saved account approval validated. You can set the DVR login.";
const kLoginSet = "DVR login configured. Service stays stopped.";
const kLoginRefused =
  "Account approval, loopback gateway consent and a 15-128-byte password are required.";
const kWait = "Wait for the current setup request.";

export async function setUpAccount(tour) {
  const { display, journal, layout, program, scratch, step } = tour;
  tour.approvals = await ApprovalService.start(scratch);
  // Settings are read anew for every request.
  editSettings(layout, { DVR_APPROVAL_ORIGIN: tour.approvals.origin });
  const bring = (expected, button) =>
    program.bringing(expected, kSetup, () => program.press(button, kSetup));
  const password = newPassword(tour, 15);

  await step("Resume Saved Approval without one", () =>
    bring(
      "No saved approval credential. Existing account state was preserved; " +
        "use account management for recovery.",
      "Resume Saved Approval",
    ),
  );

  await step("Request Account Approval", () => requestApproval(tour));

  await step("Set DVR Login before the approval", async () => {
    await program.type(kUsername, "owner", kSetup);
    await program.type(kPassword, password, kSetup);
    await program.tick(kTrustProxy, true);
    return bring(kLoginRefused, "Set DVR Login");
  });

  await step("Check Approval before the owner decides", async () =>
    bring(`Account approval code: ${await tour.approvals.pendingCode()}`, "Check Approval"),
  );

  await step("Check Approval after the owner approved", () => checkApproval(tour));

  const refusals = [
    ["without the consent", password, false],
    ["with 14 bytes", newPassword(tour, 14), true],
    ["with 129 bytes", newPassword(tour, 129), true],
  ];
  for (const [what, refused, consent] of refusals) {
    await step(`Set DVR Login ${what}`, async () => {
      await program.type(kPassword, refused, kSetup);
      await program.tick(kTrustProxy, consent);
      return bring(kLoginRefused, "Set DVR Login");
    });
    await step("Resume Saved Approval after that", () =>
      bring(kValidated, "Resume Saved Approval"),
    );
  }

  await step("Renew Saved Approval, and a close meanwhile", () => renewWhileClosing(tour));

  await step("Set DVR Login with 15 bytes", async () => {
    await program.type(kPassword, password, kSetup);
    const said = await setLogin(tour, password);
    assert.ok(await verifyLogin(layout, { username: "owner", password }));
    return said;
  });

  await step("Set DVR Login once more", async () => {
    await program.type(kPassword, password, kSetup);
    return bring(
      "Existing login policy preserved. Use account management for changes.",
      "Set DVR Login",
    );
  });

  await step("Close twice, quickly", () => closeTwice(tour));

  await step("TLS / Account once more", async () => {
    await openSetup(program);
    assertEmpty((await program.look()).window(kSetup));
    display.photograph(journal.file("opened"));
    await closeSetup(program);
    return program.sentence();
  });
}

/** The longest password takes an installation without a login: a second one. */
export async function setUpSecondAccount(tour) {
  const { program, scratch, step } = tour;
  const second = {
    ...tour,
    layout: layoutOf(scratch.path("home", "Second installation")),
    storage: scratch.path("home", "Second recordings"),
  };

  await step("Install a second DVR", async () => {
    await program.type("Installation folder", second.layout.home);
    const said = await install(program, second);
    editSettings(second.layout, {
      DVR_PORT: await freePort(),
      DVR_APPROVAL_ORIGIN: tour.approvals.origin,
    });
    return said;
  });

  await step("Set the second DVR's login with 128 bytes", async () => {
    const password = newPassword(tour, 128);
    await openSetup(program);
    await requestApproval(second);
    await checkApproval(second);
    await program.type(kUsername, "owner", kSetup);
    await program.type(kPassword, password, kSetup);
    await program.tick(kTrustProxy, true);
    const said = await setLogin(second, password);
    assert.ok(await verifyLogin(second.layout, { username: "owner", password }));
    return said;
  });

  await closeSetup(program);
}

// Every one a password that nobody else on this computer has.
function newPassword({ passwords }, bytes) {
  const password = randomBytes(bytes).toString("base64url").slice(0, bytes);
  passwords.push(password);
  return password;
}

function requestApproval({ approvals, layout, program }) {
  return awaitCode(program, async () => {
    await program.press("Request Account Approval", kSetup);
    await eventually(() => fs.existsSync(layout.enrollmentFile), "the request");
    return approvals.pendingCode();
  });
}

async function awaitCode(program, gesture) {
  const before = await program.sentence(kSetup);
  return program.expectSentence(`Account approval code: ${await gesture()}`, before, kSetup);
}

async function checkApproval({ approvals, program }) {
  await approvals.approve(await approvals.pendingCode());
  return program.bringing(kValidated, kSetup, () => program.press("Check Approval", kSetup));
}

// With the setup script held up, there is time to look around.
async function setLogin(tour, password) {
  const { display, journal, program } = tour;
  const script = setupScript(program);
  await freeze(script);
  await program.press("Set DVR Login", kSetup);
  await program.see((sight) => sight.window(kSetup).sentence() === "Working...", "at work");
  assertEnvironment(script, kSetupNames);
  assertNoPasswordInProcesses([password]);

  const enabled = (await program.look()).window(kSetup).controls().filter((view) => view.enabled);
  assert.deepEqual(enabled.map(({ title }) => title), ["Manage Account"]);
  await program.press("Manage Account", kSetup);
  await expectOpened(tour, "https://account.veltrix.example/manage");
  display.photograph(journal.file("locked"));
  resume(script);
  const said = await program.expectSentence(kLoginSet, "Working...", kSetup);
  assert.equal(await program.text(kPassword, kSetup), "");
  return said;
}

async function renewWhileClosing({ display, journal, program }) {
  const script = setupScript(program);
  await freeze(script);
  await program.press("Renew Saved Approval", kSetup);
  await program.see((sight) => sight.window(kSetup).sentence() === "Working...", "at work");
  await program.bringing(kWait, kSetup, () => program.clickClose(kSetup));
  display.photograph(journal.file("refused"));
  resume(script);
  return program.expectSentence(kValidated, kWait, kSetup);
}

async function closeTwice({ display, journal, program }) {
  const script = setupScript(program);
  await freeze(script);
  await program.type(kPassword, "gone when closing begins", kSetup);
  await program.clickClose(kSetup);
  await program.see((sight) => sight.window(kSetup).field(kPassword).text === "", "emptied");
  const said = await program.bringing(kWait, kSetup, () => program.clickClose(kSetup));
  display.photograph(journal.file("refused"));
  resume(script);
  await program.expectShown(kSetup, false);
  return said;
}

async function closeSetup(program) {
  await program.clickClose(kSetup);
  await program.expectShown(kSetup, false);
  assert.ok(await program.isShown(kSettings));
}

function setupScript(program) {
  const script = scriptOf(program.pid, "first-run.mjs");
  assert.ok(script, "no setup script runs");
  return script;
}
