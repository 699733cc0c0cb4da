// What makes a layout necessary: a frame that changes from outside, a window about to be shown, a
// control whose content changes.
#include "gnustep/layout/LayoutEngine.h"
#include "gnustep/layout/LayoutRules.h"
#include "gnustep/layout/Measure.h"
#include "gnustep/runtime/MethodWrap.h"
#include "gnustep/runtime/SetUp.h"

namespace veltrix::gnustep {
namespace {

bool takesPartInLayout(NSView* view) {
    return isLaidOutByRules(view) || takesPartInRules(view) ||
           [view isKindOfClass:[NSStackView class]];
}

// -setFrame: does not go through -setFrameSize:, and a scroll view tiles with either.
void (*originalSetFrame)(id, SEL, NSRect) = nullptr;
void setFrame(id self, SEL command, NSRect frame) {
    const bool resized = !NSEqualSizes([self frame].size, frame.size);
    originalSetFrame(self, command, frame);
    if (resized && takesPartInLayout(self))
        layOutTreeOf(self);
}

void (*originalSetFrameSize)(id, SEL, NSSize) = nullptr;
void setFrameSize(id self, SEL command, NSSize size) {
    const bool resized = !NSEqualSizes([self frame].size, size);
    originalSetFrameSize(self, command, size);
    if (resized && takesPartInLayout(self))
        layOutTreeOf(self);
}

void (*originalSetHidden)(id, SEL, BOOL) = nullptr;
void setHidden(id self, SEL command, BOOL hidden) {
    originalSetHidden(self, command, hidden);
    if ([[self superview] isKindOfClass:[NSStackView class]])
        [self setNeedsLayout:YES];
}

void (*originalOrderWindow)(id, SEL, NSWindowOrderingMode, NSInteger) = nullptr;
void orderWindow(id self, SEL command, NSWindowOrderingMode place, NSInteger other) {
    if (place != NSWindowOut)
        [self layoutIfNeeded];
    originalOrderWindow(self, command, place, other);
}

// One original to go back to for every setter that is wrapped.
template <int Setter> struct ContentSetter {
    static inline void (*original)(id, SEL, id) = nullptr;

    static void invalidating(id self, SEL command, id content) {
        original(self, command, content);
        if (takesPartInLayout(self) || [[self superview] isKindOfClass:[NSStackView class]])
            [self invalidateIntrinsicContentSize];
    }

    static void install(Class owner, SEL selector) {
        wrapMethod(owner, selector, invalidating, original);
    }
};

}  // namespace

void installLayoutTriggers() {
    wrapMethod([NSView class], @selector(setFrame:), setFrame, originalSetFrame);
    wrapMethod([NSView class], @selector(setFrameSize:), setFrameSize, originalSetFrameSize);
    wrapMethod([NSView class], @selector(setHidden:), setHidden, originalSetHidden);
    wrapMethod([NSWindow class], @selector(orderWindow:relativeTo:), orderWindow,
               originalOrderWindow);
    ContentSetter<0>::install([NSControl class], @selector(setStringValue:));
    ContentSetter<1>::install([NSControl class], @selector(setObjectValue:));
    ContentSetter<2>::install([NSControl class], @selector(setAttributedStringValue:));
    ContentSetter<3>::install([NSControl class], @selector(setFont:));
    ContentSetter<4>::install([NSButton class], @selector(setTitle:));
    ContentSetter<5>::install([NSButton class], @selector(setImage:));
}

}  // namespace veltrix::gnustep
