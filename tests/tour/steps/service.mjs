// Starting, looking after and stopping the service; the pages and the folder that can be opened.

import assert from "node:assert/strict";
import { fetchPage } from "../network.mjs";
import { eventually } from "../waiting.mjs";
import { askAndAccept, settingsOf } from "./installing.mjs";

export const kStart = {
  question: "Start DVR?",
  text:
    "DVR listens on all network interfaces at port 3000. Its configured HTTPS gateway also " +
    "starts when present. No firewall or router rules will be changed.",
  safe: "Cancel",
  proceed: "Start",
};
export const kStop = {
  question: "Stop DVR?",
  text: "Active recordings may be interrupted. Saved recordings are retained.",
  safe: "Keep Running",
  proceed: "Stop DVR",
};

export async function runService(tour) {
  const { display, journal, layout, program, step } = tour;

  await step("Dashboard while stopped", () =>
    program.outcome("DVR is stopped or unhealthy. Run Check Configuration.", () =>
      program.press("Dashboard"),
    ),
  );

  await step("Start DVR, declined with Return", async () => {
    await program.press("Start DVR");
    await program.expectAlert(kStart);
    display.photograph(journal.file("question"));
    await program.decline(kStart);
    return program.sentence();
  });

  await step("Start DVR", () => startService(program));

  await step("Refresh Status in the menu", () =>
    program.outcome("DVR running and healthy.", async () => {
      await program.openMenu();
      display.photograph(journal.file("menu"));
      await program.dismissMenu();
      await program.choose("Refresh Status");
    }),
  );

  await step("Dashboard, in the browser", () =>
    program.outcome("Ready.", () => program.press("Dashboard")),
  );
  await expectOpenedPage(tour, "/dashboard", "<h1>Dashboard</h1>");

  await step("Check Configuration in the menu", () =>
    program.outcome("Configuration checked. Account/source authorization is separate.", () =>
      program.choose("Check Configuration"),
    ),
  );

  await step("Recordings, in the menu", () =>
    program.outcome("Ready.", () => program.choose("Recordings")),
  );
  await expectOpenedPage(tour, "/recordings", "<h1>Recordings</h1>");

  await step("Refresh Status in the window", () =>
    program.outcome("DVR running and healthy.", () => program.press("Refresh Status")),
  );

  await step("Shared Links in the menu", () =>
    program.outcome("Ready.", () => program.choose("Shared Links")),
  );
  await expectOpenedPage(tour, "/shares", "<h1>Shared links</h1>");

  await step("Stop DVR, declined with Return", async () => {
    await program.press("Stop DVR");
    await program.expectAlert(kStop);
    display.photograph(journal.file("question"));
    await program.decline(kStop);
    return program.sentence();
  });

  await step("Stop DVR in the menu", () => stopService(program));

  await step("Configuration Folder", async () => {
    const said = await program.outcome("Ready.", () => program.press("Configuration Folder"));
    await expectOpened(tour, `file://${encodeURI(layout.configFolder)}`, layout.configFolder);
    return said;
  });
}

export function startService(program) {
  return program.outcome("DVR started.", () => askAndAccept(program, "Start DVR", kStart));
}

export function stopService(program) {
  return program.outcome("DVR stopped.", async () => {
    await program.choose("Stop DVR...");
    await program.expectAlert(kStop);
    await program.accept(kStop);
  });
}

/** The page was opened at the public address, and the server has it. */
async function expectOpenedPage(tour, page, content) {
  await expectOpened(tour, `${tour.origin}${page}`);
  const { DVR_PORT: port } = settingsOf(tour.layout);
  const { status, body } = await fetchPage(`http://127.0.0.1:${port}${page}`);
  assert.equal(status, 200);
  assert.ok(body.includes(content));
}

/** The desktop was last asked to open this, in one of its spellings. */
export async function expectOpened({ scratch }, ...spellings) {
  const last = () => scratch.opened().at(-1);
  await eventually(() => spellings.includes(last()), `opened ${spellings[0]}`);
}
