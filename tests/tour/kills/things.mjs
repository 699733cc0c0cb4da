// What the companion is doing when it is ended: each thing is a gesture that takes its time, and a
// rule for which of the recorder's files it may add. A gesture works in every state that an earlier
// round may have left the recorder in.

import { kSettings, kSetup } from "../program.mjs";
import { askAndAccept } from "../steps/installing.mjs";
import { kStart, kStop } from "../steps/service.mjs";
import { chooseAndAccept, kUpdate } from "../steps/updating.mjs";
import { eventually } from "../waiting.mjs";
import { isRecordingOf } from "./state.mjs";

export const kSaved = "Desktop settings saved. Service unchanged.";
export const kRunning = "DVR running and healthy.";
export const kStopped = "DVR stopped.";

const nothing = () => () => false;
const addedByStart = ({ recorders }) => isRecordingOf(recorders);

function addedBySetup({ recorder: { layout } }) {
  const files = [
    layout.tlsFile,
    layout.tlsCertificateFile,
    layout.tlsKeyFile,
    layout.tlsApprovedCAFile,
    layout.enrollmentFile,
  ];
  return (file) => files.includes(file);
}

/** `fresh`: begins with no companion running. `states`: it goes through so many by turns. */
export const kThings = [
  { name: "saving other settings", gesture: saveOther, mayAdd: nothing },
  { name: "refreshing the status", gesture: refresh, mayAdd: nothing },
  { name: "checking the configuration", gesture: check, mayAdd: nothing },
  { name: "showing the configuration folder", gesture: showFolder, mayAdd: nothing },
  { name: "starting or stopping", gesture: startOrStop, states: 2, mayAdd: addedByStart },
  { name: "updating", gesture: update, mayAdd: nothing },
  { name: "validating TLS", gesture: validateTls, mayAdd: addedBySetup },
  { name: "requesting an approval", gesture: requestApproval, mayAdd: addedBySetup },
  { name: "opening and closing setup", gesture: openAndCloseSetup, mayAdd: nothing },
  { name: "quitting", gesture: quit, mayAdd: nothing },
  { name: "launching", gesture: launch, fresh: true, mayAdd: nothing },
];

// The gesture must bring up one of these sentences, and no other.
async function saying({ program }, sentences, gesture, title = kSettings) {
  const before = await program.sentence(title);
  await gesture();
  await eventually(async () => {
    const sentence = await program.sentence(title);
    if (sentences.includes(sentence)) return true;
    if (sentence === before || sentence === "Working...") return false;
    throw new Error(`the status line says\n  ${sentence}\nand not\n  ${sentences.join("\n  ")}`);
  }, sentences.join(" / "));
}

async function save(campaign) {
  await saying(campaign, [kSaved], () => campaign.program.press("Save"));
}

async function saveOther(campaign) {
  const { program, recorders, recorder } = campaign;
  const other = recorders.find((one) => one !== recorder);
  await program.type("Installation folder", other.layout.home);
  await program.type("Node executable", other.layout.runtimeFile);
  campaign.storing = other;
  await save(campaign);
  campaign.stored = other;
}

async function refresh(campaign) {
  await save(campaign);
  await askStatus(campaign);
}

/** What the recorder is doing; there is no third answer once nobody is at work on it. */
export async function askStatus(campaign) {
  const { program } = campaign;
  await saying(campaign, [kRunning, kStopped], () => program.press("Refresh Status"));
}

async function check(campaign) {
  const checked = "Configuration checked. Account/source authorization is separate.";
  await saying(campaign, [checked], () => campaign.program.choose("Check Configuration"));
}

async function showFolder(campaign) {
  await saying(campaign, ["Ready."], () => campaign.program.press("Configuration Folder"));
}

async function startOrStop(campaign) {
  const { program } = campaign;
  if (campaign.running) {
    await saying(campaign, [kStopped], () => askAndAccept(program, "Stop DVR", kStop));
  } else {
    await saying(campaign, ["DVR started."], () => askAndAccept(program, "Start DVR", kStart));
  }
}

async function update(campaign) {
  const outcome = campaign.running
    ? "Stop both DVR and its TLS gateway before updating."
    : "DVR updated. Configuration and recordings retained; service stays stopped.";
  const gesture = () => chooseAndAccept(campaign.program, "Update DVR...", kUpdate);
  await saying(campaign, [outcome], gesture);
}

async function openSetup({ program }) {
  await program.press("TLS / Account");
  await program.expectShown(kSetup);
}

async function validateTls(campaign) {
  const { program, certificate, authority } = campaign;
  await openSetup(campaign);
  await program.type("Certificate chain (PEM)", certificate.certificate, kSetup);
  await program.type("Private key (PEM)", certificate.key, kSetup);
  await program.type("Optional local CA (PEM)", authority.certificate, kSetup);
  await program.tick("I trust the selected local CA", true);
  await saying(
    campaign,
    ["Certificate validated; gateway stays stopped. Client devices must also trust its issuer."],
    () => program.press("Validate TLS", kSetup),
    kSetup,
  );
}

async function requestApproval(campaign) {
  const { program } = campaign;
  await openSetup(campaign);
  await program.press("Request Account Approval", kSetup);
  await program.see(
    (sight) => sight.window(kSetup).sentence().startsWith("Account approval code: "),
    "the approval's code",
  );
}

async function openAndCloseSetup(campaign) {
  const { program } = campaign;
  await openSetup(campaign);
  await program.clickClose(kSetup);
  await program.expectShown(kSetup, false);
}

async function quit({ program }) {
  await program.quit();
}

async function launch({ program }) {
  await program.ready();
}
