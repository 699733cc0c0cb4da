import assert from "node:assert/strict";
import test from "node:test";
import { isUsablePath, isWithin, layoutOf } from "../desktop/lib/layout.mjs";

test("a home is the same folder however many slashes it is written with", () => {
  for (const home of ["/a/home", "/a/home/", "/a//home///", "/a/./home", "/a/b/../home"]) {
    assert.equal(layoutOf(home).home, "/a/home", home);
  }
  assert.equal(layoutOf("/").home, "/");
  assert.equal(layoutOf("/").marker, "/installation.json");
});

test("a usable path is absolute, printable, and without a double quote", () => {
  for (const path of ["/", "/a b/\u00e9", "/a'b", "/a\u0085"]) {
    assert.equal(isUsablePath(path), true, path);
  }
  const relative = ["", "a", "~/a", "./a"];
  const unprintable = ['/a"', "/a\t", "/a\n", "/a\u0000", "/a\u007f"];
  for (const path of [...relative, ...unprintable, 5, null]) {
    assert.equal(isUsablePath(path), false, String(path));
  }
});

test("being within a folder is a matter of whole names", () => {
  assert.equal(isWithin("/a/b", "/a/b"), true);
  assert.equal(isWithin("/a/b/c", "/a/b"), true);
  assert.equal(isWithin("/a/b/..c", "/a/b"), true);
  assert.equal(isWithin("/a/bc", "/a/b"), false);
  assert.equal(isWithin("/a", "/a/b"), false);
});
