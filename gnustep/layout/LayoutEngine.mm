#include "gnustep/layout/LayoutEngine.h"

#include "common/RetainPtr.h"
#include "gnustep/layout/LayoutRules.h"
#include "gnustep/layout/Measure.h"
#include "gnustep/layout/StackArrangement.h"
#include "gnustep/runtime/Immortal.h"
#include "gnustep/runtime/SideTable.h"

#include <algorithm>
#include <vector>

namespace veltrix::gnustep {
namespace {

// A scroller that comes or goes changes the room there was for everything beside it, and that may
// change once more whether it is needed. More rounds than these would be a circle.
constexpr int kMostRounds = 4;

bool layingOut = false;
bool changed = false;

NSView* topOf(NSView* view) {
    while (NSView* superview = [view superview])
        view = superview;
    return view;
}

void setFrame(NSView* view, NSRect frame) {
    const NSRect old = [view frame];
    if (NSEqualRects(old, frame))
        return;
    changed = true;
    [view setFrame:frame];
    [[view superview] setNeedsDisplayInRect:NSUnionRect(old, frame)];
    [view setNeedsDisplay:YES];
}

struct Span {
    CGFloat start;
    CGFloat length;
};

// From the pins where there are any; `current` is where the view is now.
template <typename Length>
Span spanUnderRules(NSView* view, NSLayoutAttribute near, NSLayoutAttribute far,
                    NSLayoutAttribute centre, CGFloat room, CGFloat current, Length length) {
    const std::optional<CGFloat> begin = pinnedOffset(view, near);
    const std::optional<CGFloat> end = pinnedOffset(view, far);
    const std::optional<CGFloat> middle = pinnedOffset(view, centre);
    if (begin && end)
        return {*begin, std::max<CGFloat>(0, room + *end - *begin)};
    const CGFloat own = length();
    if (begin)
        return {*begin, own};
    if (end)
        return {room + *end - own, own};
    if (middle)
        return {(room - own) / 2 + *middle, own};
    return {current, own};
}

// Coordinates run downwards here; the view's may not.
NSRect frameUnderRules(NSView* view, NSView* superview) {
    const NSRect frame = [view frame];
    const NSSize room = [superview bounds].size;
    const bool flipped = [superview isFlipped];
    const CGFloat fromTop = flipped ? NSMinY(frame) : room.height - NSMaxY(frame);

    const Span across = spanUnderRules(view, NSLayoutAttributeLeading, NSLayoutAttributeTrailing,
                                       NSLayoutAttributeCenterX, room.width, NSMinX(frame),
                                       [&] { return preferredWidth(view, room.width); });
    const Span down = spanUnderRules(view, NSLayoutAttributeTop, NSLayoutAttributeBottom,
                                     NSLayoutAttributeCenterY, room.height, fromTop,
                                     [&] { return heightAtWidth(view, across.length); });
    const bool placed = pinnedOffset(view, NSLayoutAttributeTop) ||
                        pinnedOffset(view, NSLayoutAttributeBottom) ||
                        pinnedOffset(view, NSLayoutAttributeCenterY);
    if (!placed)
        return NSMakeRect(across.start, NSMinY(frame), across.length, down.length);
    const CGFloat y = flipped ? down.start : room.height - down.start - down.length;
    return NSMakeRect(across.start, y, across.length, down.length);
}

void placeChildren(NSView* view) {
    if ([view isKindOfClass:[NSStackView class]]) {
        for (const auto& [child, frame] :
             arrangeStack(static_cast<NSStackView*>(view), [view bounds].size))
            setFrame(child, frame);
        return;
    }
    for (NSView* child in [view subviews])
        if (isLaidOutByRules(child))
            setFrame(child, frameUnderRules(child, view));
}

void layOutDownwards(NSView* view) {
    placeChildren(view);
    // Tiling a scroll view may add or remove its scrollers meanwhile.
    std::vector<RetainPtr<NSView>> children;
    for (NSView* child in [view subviews])
        children.push_back(retainPtr(child));
    for (const RetainPtr<NSView>& child : children)
        layOutDownwards(child);
}

// Any view of each tree that waits for a layout. They are not kept alive.
std::vector<NSView*>& scheduled() {
    static Immortal<std::vector<NSView*>> views;
    return *views;
}

class ScheduledViewsThatDie final : public SideTableBase {
  public:
    void forget(id object) override { std::erase(scheduled(), object); }
};

}  // namespace

void layOutTreeOf(NSView* view) {
    if (layingOut)
        return;
    layingOut = true;
    const MeasuringOnce measuring;
    NSView* const top = topOf(view);
    std::erase_if(scheduled(), [top](NSView* waiting) { return topOf(waiting) == top; });
    for (int round = 0; round < kMostRounds; ++round) {
        changed = false;
        layOutDownwards(top);
        if (!changed)
            break;
    }
    layingOut = false;
}

bool isLayoutScheduled(NSView* view) {
    NSView* const top = topOf(view);
    return std::any_of(scheduled().begin(), scheduled().end(),
                       [top](NSView* waiting) { return topOf(waiting) == top; });
}

}  // namespace veltrix::gnustep

@interface VeltrixScheduledLayout : NSObject
+ (void)run:(id)ignored;
@end

@implementation VeltrixScheduledLayout
+ (void)run:(id)ignored {
    (void)ignored;
    // Each layout takes its tree off the list.
    while (!veltrix::gnustep::scheduled().empty())
        veltrix::gnustep::layOutTreeOf(veltrix::gnustep::scheduled().back());
}
@end

namespace veltrix::gnustep {

void scheduleLayoutOfTreeOf(NSView* view) {
    static Immortal<ScheduledViewsThatDie> scheduledViewsThatDie;
    if (layingOut || isBeingDeallocated(view) || isLayoutScheduled(view))
        return;
    if (scheduled().empty())
        [[NSRunLoop currentRunLoop]
            performSelector:@selector(run:)
                     target:[VeltrixScheduledLayout class]
                   argument:nil
                      order:0
                      modes:@[
                          NSDefaultRunLoopMode, NSModalPanelRunLoopMode, NSEventTrackingRunLoopMode
                      ]];
    scheduled().push_back(view);
}

}  // namespace veltrix::gnustep
