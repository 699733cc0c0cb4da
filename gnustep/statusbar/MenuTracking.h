// A menu that drops down from a rectangle on the screen, until a choice is made or it is dismissed.
#pragma once

#import <AppKit/AppKit.h>

#include <functional>

namespace veltrix::gnustep {

// Shows the menu under `anchor` (screen coordinates) and follows mouse and keyboard:
//
//   - press, drag, release over an item chooses it;
//   - a click on the anchor leaves the menu open, for a click on an item to choose;
//   - arrow keys move, Return chooses, Escape or a click anywhere else dismisses.
//
// `closed` is called when the menu has gone, and only then the action of the chosen item is sent:
// it may put up a modal window. Work posted to the run loop in NSEventTrackingRunLoopMode goes on
// meanwhile.
void trackMenu(NSMenu* menu, NSRect anchor, NSScreen* screen, const std::function<void()>& closed);

}  // namespace veltrix::gnustep
