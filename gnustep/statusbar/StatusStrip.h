// The panel that shows the buttons of all status items, the newest to the left.
#pragma once

#import <AppKit/AppKit.h>

#include "gnustep/statusbar/StatusButton.h"

namespace veltrix::gnustep {

constexpr CGFloat kStatusBarThickness = 28;

void addToStatusStrip(VeltrixStatusBarButton* button);
void removeFromStatusStrip(VeltrixStatusBarButton* button);
// After a button may have become wider or narrower.
void layOutStatusStrip();

}  // namespace veltrix::gnustep
