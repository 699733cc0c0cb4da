#include "shell/Layout.h"

#include "common/RetainPtr.h"
#include "support/AppKitDriver.h"

namespace veltrix::test {
namespace {

template <typename Kind> Kind* firstOf(NSWindow* window) {
    return dynamicCast<Kind>(findView([window contentView], [](NSView* view) {
        return (bool)[view isKindOfClass:[Kind class]];
    }));
}

}  // namespace

NSScrollView* scrollView(NSWindow* window) {
    return firstOf<NSScrollView>(window);
}

NSStackView* rootStack(NSWindow* window) {
    return firstOf<NSStackView>(window);
}

NSRect inWindow(NSView* view) {
    return [view convertRect:[view bounds] toView:nil];
}

void resizeContent(NSWindow* window, CGFloat width, CGFloat height) {
    [window setContentSize:NSMakeSize(width, height)];
    [[window contentView] layoutSubtreeIfNeeded];
}

CGFloat neededHeight(NSTextField* label) {
    // A label keeps two points free at each side.
    const NSSize room = NSMakeSize(NSWidth([label frame]) - 4, 10000);
    return NSHeight([[label attributedStringValue]
        boundingRectWithSize:room
                     options:NSStringDrawingUsesLineFragmentOrigin]);
}

}  // namespace veltrix::test
