// kills.mjs BUILD ROUNDS SEED: ends the companion by force, over and over, and looks at what is
// left of it. Started by scripts/kills, which sees to what it needs.
//
//   kills/things.mjs       what it is doing when it is ended
//   kills/executioner.mjs  ends it at a given moment
//   kills/state.mjs        what must survive
//   kills/chance.mjs       the choices, which the seed repeats
//
// Two recorders are installed once, so that there are two pairs of settings to change between. Then
// every thing is done to its end once, which shows how long it takes, and from there on only up to
// a random moment. The recorder's own scripts are left alone: what they have begun they bring to
// its end without a companion, while the next one is launched already.

import assert from "node:assert/strict";
import fs from "node:fs";
import { once } from "node:events";
import { basename } from "node:path";
import { Worker } from "node:worker_threads";
import { layoutOf } from "../../recorder/desktop/lib/layout.mjs";
import { makeCertificates } from "./certificates.mjs";
import { Chance } from "./kills/chance.mjs";
import { Kept, leftovers, storedSettings, verifyReadable, verifyTls } from "./kills/state.mjs";
import { askStatus, kRunning, kSaved, kThings } from "./kills/things.mjs";
import { ApprovalService, freePort } from "./network.mjs";
import { commandLineOf, processesThatMention } from "./processes.mjs";
import { kSettings, Program } from "./program.mjs";
import { perform } from "./stage.mjs";
import { editSettings, install } from "./steps/installing.mjs";
import { eventually } from "./waiting.mjs";

const kHost = "dvr.example.test";
const kSecondsForRound = 60; // never needed by one that goes well
const kLaunchLimit = 15000; // milliseconds; GNUstep alone waits for longer on a lock left behind
const kFresh = 6; // what the last two companions that were ended may have left unfinished

const [build, rounds, seed] = process.argv.slice(2);
const chance = new Chance(Number(seed));
let where = "getting ready";
let passed = 0;

const print = (text) => process.stdout.write(`${text}\n`);

function fail(error) {
  print(`\nFAILED ${where} (seed ${seed}):\n${error.stack}`);
  print(`${passed} passed, 1 failed`);
}

const limit = (Number(rounds) + kThings.length) * kSecondsForRound;
await perform({ build, limit, fail }, async (stage) => {
  print(`seed ${seed}`);
  const campaign = await begin(stage);
  const durations = new Map();
  const key = (thing) => `${thing.name}, ${campaign.running ? "running" : "stopped"}`;

  for (const thing of kThings.flatMap((one) => Array(one.states ?? 1).fill(one))) {
    where = `${thing.name}, to its end`;
    const name = key(thing);
    const { took } = await round(campaign, thing, null);
    durations.set(name, took).set(thing.name, took);
    print(`       ${where}: ${Math.round(took)} ms`);
  }
  for (let number = 1; number <= rounds; ++number) {
    const thing = chance.oneOf(kThings);
    const part = chance.fraction();
    const changes = chance.oneOf([0, chance.upTo(8)]);
    where = `in round ${number}, ${thing.name}`;
    const longest = durations.get(key(thing)) ?? durations.get(thing.name);
    const delay = changes === 0 ? part * longest : longest;
    const { moment, settings } = await round(campaign, thing, { delay, changes });
    passed += 1;
    print(`  ${String(number).padStart(3)}  ${thing.name}, ended ${moment}; settings ${settings}`);
  }
  await campaign.program.quit();
  print(`${passed} passed, 0 failed`);
});

/** Both recorders installed, and the companion before its first thing. */
async function begin(stage) {
  const { scratch } = stage;
  const { good, authority } = makeCertificates(scratch.path("certificates"), kHost);
  const approvals = await ApprovalService.start(scratch);
  const program = await Program.start(stage);
  const recorders = [];
  for (const name of ["First", "Second"]) {
    const recorder = {
      layout: layoutOf(scratch.path("home", name)),
      storage: scratch.path("home", `${name} recordings`),
      origin: `https://${kHost}:${await freePort()}`,
    };
    await program.type("Installation folder", recorder.layout.home);
    await program.type("Node executable", stage.bundledRuntime);
    await program.bringing(kSaved, kSettings, () => program.press("Save"));
    await install(program, recorder);
    editSettings(recorder.layout, {
      DVR_PORT: await freePort(),
      DVR_APPROVAL_ORIGIN: approvals.origin,
    });
    recorders.push(recorder);
  }
  await program.quit();
  const campaign = { ...stage, recorders, certificate: good, authority, program: null };
  await launch(campaign);
  await lookAtRecorder(campaign);
  return campaign;
}

function pairOf({ layout }) {
  return { installationHome: layout.home, nodeExecutable: layout.runtimeFile };
}

/** Starts the companion, which must show its window and the stored settings. */
async function launch(campaign) {
  const began = performance.now();
  campaign.program = await Program.start(campaign);
  const took = performance.now() - began;
  assert.ok(took < kLaunchLimit, `a launch that took ${Math.round(took)} ms`);
  const stored = storedSettings(campaign.scratch);
  campaign.recorder = campaign.recorders.find(
    ({ layout }) => layout.home === stored.installationHome,
  );
  assert.deepEqual(stored, pairOf(campaign.recorder), "the stored settings");
  assert.equal(await campaign.program.text("Installation folder"), stored.installationHome);
  assert.equal(await campaign.program.text("Node executable"), stored.nodeExecutable);
}

async function lookAtRecorder(campaign) {
  await askStatus(campaign);
  campaign.running = (await campaign.program.sentence()) === kRunning;
}

/**
 * Does the thing up to the moment, or to its end if there is none, ends the companion, and verifies
 * what is left.
 */
async function round(campaign, thing, moment) {
  const { recorders, scratch } = campaign;
  const kept = new Kept(scratch, recorders);
  const before = storedSettings(scratch);
  const at = campaign.recorder;
  Object.assign(campaign, { storing: at, stored: null });
  if (thing.fresh) await campaign.program.quit();

  const ended = await endDuring(campaign, thing, moment);

  const after = storedSettings(scratch);
  const possible = campaign.stored ? [campaign.stored] : [at, campaign.storing];
  assert.ok(
    possible.some((recorder) => isSame(after, pairOf(recorder))),
    `settings ${JSON.stringify(after)} that are not ${JSON.stringify(possible.map(pairOf))}`,
  );
  await launch(campaign);
  await eventually(() => unknownProcesses(campaign).length === 0, "the end of the scripts");

  const added = kept.verify(thing.mayAdd({ ...campaign, recorder: at }));
  for (const recorder of recorders) {
    verifyReadable(recorder);
    verifyTls(recorder, campaign.certificate);
  }
  // As it was, so that another round can do the same, and no gateway is missed. Recordings stay.
  for (const file of added.filter((one) => !one.endsWith(".segment"))) fs.rmSync(file);
  await lookAtRecorder(campaign);
  const left = leftovers(scratch).filter((file) => !file.includes(`-${campaign.program.pid}`));
  assert.ok(left.length <= kFresh, `more and more is left over:\n${left.join("\n")}`);
  return { ...ended, settings: isSame(before, after) ? "as before" : "changed" };
}

function isSame(one, other) {
  return JSON.stringify(one) === JSON.stringify(other);
}

async function endDuring(campaign, thing, moment) {
  const executioner = new Worker(new URL("kills/executioner.mjs", import.meta.url), {
    workerData: {
      ...(moment ?? { delay: 0, changes: 0 }),
      folders: [campaign.scratch.path("Defaults"), campaign.scratch.path("Defaults", ".lck")],
    },
  });
  await once(executioner, "message");
  if (thing.fresh) campaign.program = Program.spawn(campaign);
  const { program } = campaign;
  const began = performance.now();
  let failure = null;
  const gesture = thing.gesture(campaign).catch((error) => {
    failure = { error, time: process.hrtime.bigint() };
  });
  if (moment === null) await gesture;
  const took = performance.now() - began;
  executioner.postMessage(program.pid);
  const [end] = await once(executioner, "message");
  await program.gone();
  await gesture;
  // Whatever a gesture says of a companion that has been ended says nothing.
  if (failure !== null && failure.time < end.time) throw failure.error;
  return { took, moment: end.moment };
}

/** Processes of the campaign that are none of those which outlive a companion by right. */
function unknownProcesses({ program, scratch }) {
  const byRight = ["/server/server.mjs", "/server/gateway.mjs", "/approval/server.mjs"];
  return processesThatMention(scratch.folder).filter((pid) => {
    const [name = "", script = ""] = commandLineOf(pid);
    const isDaemon = ["gdnc", "gpbs"].includes(basename(name));
    return pid !== program.pid && !isDaemon && !byRight.some((end) => script.endsWith(end));
  });
}
