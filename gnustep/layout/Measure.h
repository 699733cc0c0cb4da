// How large a view wants to be. Widths are found first and heights follow from them, as text does.
#pragma once

#import <AppKit/AppKit.h>

#include <limits>

namespace veltrix::gnustep {

constexpr CGFloat kUnbounded = std::numeric_limits<CGFloat>::infinity();

// The width that the rules give the view or else its content wants, but no more than `available`
// unless a rule says so. A view without a width of its own takes what is available.
CGFloat preferredWidth(NSView* view, CGFloat available);

// The height that the rules give the view or else its content needs at that width.
CGFloat heightAtWidth(NSView* view, CGFloat width);

// While one of these exists, what a view's content wants is measured once: text is slow to measure,
// and a layout asks for the same sizes again and again without changing them.
class MeasuringOnce {
  public:
    MeasuringOnce();
    ~MeasuringOnce();
    MeasuringOnce(const MeasuringOnce&) = delete;
    MeasuringOnce& operator=(const MeasuringOnce&) = delete;
};

// Whether the view is laid out by rules, not by its frame and autoresizing mask.
bool isLaidOutByRules(NSView* view);

}  // namespace veltrix::gnustep

@interface NSView (HeightForWidth)
// Overridden by what wraps its content: NSViewNoIntrinsicMetric for everything else.
- (CGFloat)contentHeightAtWidth:(CGFloat)width;
@end
