import assert from "node:assert/strict";
import { spawnSync } from "node:child_process";
import fs from "node:fs";
import path from "node:path";
import test from "node:test";
import { fileURLToPath } from "node:url";
import { launcher, temporaryFolder } from "./support/bundle.mjs";

const kScript = fileURLToPath(new URL("../scripts/stage-resources", import.meta.url));
const kNode = launcher(process.execPath);

const stage = (...words) => spawnSync(kScript, words, { encoding: "utf8" });
const contentsOf = (folder) => fs.readdirSync(folder, { recursive: true, withFileTypes: true });
const namesIn = (folder) =>
  contentsOf(folder).map((entry) => path.relative(folder, path.join(entry.parentPath, entry.name)));

test("a bundle has the scripts, the server, the runtime and the version", () => {
  const resources = path.join(temporaryFolder(), "with space", "Resources");
  assert.equal(stage(resources, kNode, "1.2.3").status, 0);
  for (const name of ["controller", "service", "install", "update", "first-run"]) {
    assert.ok(fs.existsSync(path.join(resources, "desktop", `${name}.mjs`)), name);
  }
  assert.ok(fs.existsSync(path.join(resources, "bundle", "server", "server.mjs")));
  fs.accessSync(path.join(resources, "bundle", "runtime", "bin", "node"), fs.constants.X_OK);
  const manifest = fs.readFileSync(path.join(resources, "bundle", "manifest.json"), "utf8");
  assert.deepEqual(JSON.parse(manifest), { version: "1.2.3" });
  assert.equal(contentsOf(resources).some((entry) => entry.isSymbolicLink()), false);
  assert.equal(namesIn(resources).some((name) => name.includes("test")), false);
});

test("staging again changes nothing but what is new, and leaves nothing stale", () => {
  const resources = temporaryFolder();
  stage(resources, kNode, "1.0.0");
  const names = namesIn(resources);
  fs.writeFileSync(path.join(resources, "icon"), "theirs");
  fs.writeFileSync(path.join(resources, "desktop", "stale.mjs"), "");
  assert.equal(stage(resources, "", "1.0.1").status, 0);
  const runtime = path.join("bundle", "runtime");
  const expected = names.filter((name) => !name.startsWith(runtime));
  assert.deepEqual(namesIn(resources).sort(), [...expected, "icon"].sort());
});

test("a linked runtime is copied, not linked", () => {
  const folder = temporaryFolder();
  const link = path.join(folder, "node");
  fs.symlinkSync(kNode, link);
  const resources = path.join(folder, "Resources");
  assert.equal(stage(resources, link, "1.0.0").status, 0);
  const runtime = path.join(resources, "bundle", "runtime", "bin", "node");
  assert.equal(fs.lstatSync(runtime).isFile(), true);
});

test("the licence of a runtime goes where the runtime goes", () => {
  const folder = temporaryFolder();
  fs.mkdirSync(path.join(folder, "bin"));
  fs.copyFileSync(kNode, path.join(folder, "bin", "node"));
  fs.writeFileSync(path.join(folder, "LICENSE"), "terms");
  const resources = path.join(folder, "Resources");
  assert.equal(stage(resources, path.join(folder, "bin", "node"), "1.0.0").status, 0);
  const license = path.join(resources, "bundle", "runtime", "LICENSE");
  assert.equal(fs.readFileSync(license, "utf8"), "terms");
});

test("wrong arguments are refused and touch nothing", () => {
  const resources = temporaryFolder();
  for (const words of [
    [],
    [resources, kNode],
    [resources, kNode, "1.0"],
    [resources, kNode, "1.0.0-beta"],
    [resources, kNode, '1.0.0"}'],
    [resources, path.join(resources, "none"), "1.0.0"],
  ]) {
    assert.notEqual(stage(...words).status, 0, words.join(" "));
  }
  assert.deepEqual(fs.readdirSync(resources), []);
});
