# What every script here shares. Sourced as ". scripts/lib/common.sh" from the top of the tree.

say() { printf '%s\n' "$*"; }

fail() {
  printf '%s: %s\n' "${0##*/}" "$*" >&2
  exit 1
}

have() { command -v "$1" >/dev/null 2>&1; }

on_macos() { [ "$(uname -s)" = Darwin ]; }

processors() { getconf _NPROCESSORS_ONLN 2>/dev/null || echo 2; }
