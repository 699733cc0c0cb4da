# What it takes to use the built bundle on a virtual display. Source scripts/lib/common.sh first.

# Sets node and observer for the bundle that was built into a folder; says what is missing.
require_display_and_bundle() { # BUILD_FOLDER
  bundle="$1/Veltrix Home DVR.app"
  node="$bundle/Resources/bundle/runtime/bin/node"
  observer="$1/tests/tour/libveltrix_tour_observer.so"
  missing=$(report_missing)
  [ -z "$missing" ] || fail "these are needed:
$missing"
}

report_missing() {
  [ -x "$bundle/Veltrix Home DVR" ] || say "  $bundle (scripts/build makes it)"
  [ -x "$node" ] || say "  a Node in that bundle"
  [ -f "$observer" ] || say "  $observer (it is built with the tests)"
  for tool in Xvfb xdotool import xwininfo xev openssl; do
    have "$tool" || say "  $tool (scripts/setup installs it)"
  done
}
