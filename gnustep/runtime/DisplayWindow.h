// The number by which the X server knows a window. Main thread only.
#pragma once

#import <AppKit/AppKit.h>

#include <cstdint>

namespace veltrix::gnustep {

// The X window behind a window, as runtime/WindowManager.h takes it. Everything asked of the X
// server before, such as to make and show it, has been done when this returns.
std::uint32_t windowOnDisplay(NSWindow* window);

}  // namespace veltrix::gnustep
