// Where the arranged views of a stack view go.
#pragma once

#import <AppKit/AppKit.h>

#include <vector>

namespace veltrix::gnustep {

struct ArrangedFrame {
    NSView* view;
    NSRect frame;  // in a stack view's coordinates, which run downwards
};

CGFloat naturalStackWidth(NSStackView* stack);
CGFloat stackHeightAtWidth(NSStackView* stack, CGFloat width);
std::vector<ArrangedFrame> arrangeStack(NSStackView* stack, NSSize size);

}  // namespace veltrix::gnustep
