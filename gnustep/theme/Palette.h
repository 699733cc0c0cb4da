// The colours of the look, by what they are for.
#pragma once

#import <AppKit/AppKit.h>

namespace veltrix::gnustep::palette {

NSColor* accent();
NSColor* accentPressed();
NSColor* onAccent();
NSColor* focusRing();

NSColor* text();
NSColor* secondaryText();
NSColor* disabledText();
NSColor* placeholder();
NSColor* selectedText();

NSColor* window();
NSColor* titleBar();
NSColor* titleBarInactive();
NSColor* windowEdge();
NSColor* hairline();

NSColor* control();
NSColor* controlPressed();
NSColor* controlDisabled();
NSColor* controlEdge();
NSColor* field();

NSColor* menu();
NSColor* scrollKnob();
NSColor* toolTip();

}  // namespace veltrix::gnustep::palette
