// Answering an open panel from outside, on both systems.
#pragma once

#ifdef __APPLE__

#import <AppKit/AppKit.h>

namespace veltrix::test {

// Selects the file or folder and presses "OK"; false if the panel does not let one choose it.
bool chooseInOpenPanel(NSWindow* panel, NSString* path);

bool cancelOpenPanel(NSWindow* panel);

}  // namespace veltrix::test

#else
#include "support/gnustep/OpenPanelDriver.h"
#endif
