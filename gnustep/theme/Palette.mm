#include "gnustep/theme/Palette.h"

namespace veltrix::gnustep::palette {
namespace {

NSColor* rgb(unsigned value) {
    return [NSColor colorWithCalibratedRed:((value >> 16) & 0xff) / 255.0
                                     green:((value >> 8) & 0xff) / 255.0
                                      blue:(value & 0xff) / 255.0
                                     alpha:1];
}

}  // namespace

NSColor* accent() {
    return rgb(0x0a66d8);
}
NSColor* accentPressed() {
    return rgb(0x084fa8);
}
NSColor* onAccent() {
    return rgb(0xffffff);
}
NSColor* focusRing() {
    return rgb(0x7fb2f0);
}

NSColor* text() {
    return rgb(0x1d1d1f);
}
NSColor* secondaryText() {
    return rgb(0x5f6368);
}
NSColor* disabledText() {
    return rgb(0xa3a7ad);
}
NSColor* placeholder() {
    return rgb(0x8b9097);
}
NSColor* selectedText() {
    return rgb(0xb9d6fb);
}

NSColor* window() {
    return rgb(0xf5f6f8);
}
NSColor* titleBar() {
    return rgb(0xe9ebee);
}
NSColor* titleBarInactive() {
    return rgb(0xf1f2f4);
}
NSColor* windowEdge() {
    return rgb(0xb4b8bf);
}
NSColor* hairline() {
    return rgb(0xd9dce1);
}

NSColor* control() {
    return rgb(0xffffff);
}
NSColor* controlPressed() {
    return rgb(0xe3e6ea);
}
NSColor* controlDisabled() {
    return rgb(0xf2f3f5);
}
NSColor* controlEdge() {
    return rgb(0xc4c8ce);
}
NSColor* field() {
    return rgb(0xffffff);
}

NSColor* menu() {
    return rgb(0xfcfcfd);
}
NSColor* scrollKnob() {
    return rgb(0xbcc1c8);
}
NSColor* toolTip() {
    return rgb(0xfffdf2);
}

}  // namespace veltrix::gnustep::palette
