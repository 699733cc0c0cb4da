// Images that are painted by code whenever they are drawn, in whatever size.
#pragma once

#import <AppKit/AppKit.h>

#include "common/RetainPtr.h"

namespace veltrix::gnustep {

// `paint` draws on an area of that size with the origin at the bottom left.
RetainPtr<NSImage> makePaintedImage(NSSize size, void (*paint)());

}  // namespace veltrix::gnustep
