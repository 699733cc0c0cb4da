#include "gnustep/statusbar/StatusStrip.h"

#include "common/RetainPtr.h"
#include "gnustep/runtime/DisplayWindow.h"
#include "gnustep/runtime/Immortal.h"
#include "gnustep/runtime/MethodWrap.h"
#include "gnustep/runtime/SetUp.h"
#include "gnustep/runtime/WindowManager.h"
#include "gnustep/theme/Palette.h"

#include <vector>

namespace palette = veltrix::gnustep::palette;

@interface VeltrixStatusStripPanel : NSPanel
@end

@implementation VeltrixStatusStripPanel
- (BOOL)canBecomeKeyWindow {
    return NO;
}
- (BOOL)canBecomeMainWindow {
    return NO;
}
- (BOOL)worksWhenModal {
    return YES;
}
@end

@interface VeltrixStatusStripView : NSView
@end

@implementation VeltrixStatusStripView
- (void)drawRect:(NSRect)dirty {
    (void)dirty;
    [palette::menu() set];
    NSRectFill([self bounds]);
    [palette::windowEdge() set];
    NSFrameRect([self bounds]);
}
@end

namespace veltrix::gnustep {
namespace {

constexpr CGFloat kMargin = 8;  // to the edges of the screen

std::vector<RetainPtr<VeltrixStatusBarButton>>& buttons() {
    static Immortal<std::vector<RetainPtr<VeltrixStatusBarButton>>> all;
    return *all;
}

RetainPtr<NSPanel> makePanel() {
    RetainPtr<NSPanel> panel = adoptNS([[VeltrixStatusStripPanel alloc]
        initWithContentRect:NSMakeRect(0, 0, kStatusBarThickness, kStatusBarThickness)
                  styleMask:NSWindowStyleMaskBorderless
                    backing:NSBackingStoreBuffered
                      defer:NO]);
    [panel setReleasedWhenClosed:NO];
    [panel setHidesOnDeactivate:NO];
    [panel setExcludedFromWindowsMenu:YES];
    [panel setLevel:NSStatusWindowLevel];
    [panel setAcceptsMouseMovedEvents:YES];
    [panel setContentView:adoptNS([[VeltrixStatusStripView alloc] initWithFrame:NSZeroRect]).get()];
    return panel;
}

NSPanel* strip() {
    static Immortal<RetainPtr<NSPanel>> panel(makePanel());
    return *panel;
}

void keepOtherWindowsAway(NSPanel* panel, NSRect screen) {
    reserveTopOfScreen(windowOnDisplay(panel),
                       static_cast<std::uint32_t>(kStatusBarThickness + 2 * kMargin),
                       static_cast<std::uint32_t>(NSWidth(screen)));
}

}  // namespace

void layOutStatusStrip() {
    NSPanel* const panel = strip();
    if (buttons().empty()) {
        [panel orderOut:nil];
        return;
    }
    CGFloat width = 0;
    for (const auto& button : buttons())
        width += [button widthInBarOfThickness:kStatusBarThickness];
    const NSRect screen = [[NSScreen mainScreen] frame];
    const NSRect place =
        NSMakeRect(NSMaxX(screen) - width - kMargin, NSMaxY(screen) - kStatusBarThickness - kMargin,
                   width, kStatusBarThickness);
    const bool isThere = [panel isVisible] && NSEqualRects([panel frame], place);
    [panel setFrame:place display:NO];
    CGFloat right = width;
    for (const auto& button : buttons()) {
        const CGFloat own = [button widthInBarOfThickness:kStatusBarThickness];
        right -= own;
        [button setFrame:NSMakeRect(right, 0, own, kStatusBarThickness)];
    }
    [panel display];
    if (isThere)
        return;
    [panel orderFrontRegardless];
    keepOtherWindowsAway(panel, screen);
}

// Without a window manager nobody keeps windows in the order of their levels.
void (*originalOrderWindow)(id, SEL, NSWindowOrderingMode, NSInteger) = nullptr;
void orderWindow(id self, SEL command, NSWindowOrderingMode place, NSInteger other) {
    originalOrderWindow(self, command, place, other);
    if (place == NSWindowAbove && [self level] < NSStatusWindowLevel && !buttons().empty())
        originalOrderWindow(strip(), command, NSWindowAbove, 0);
}

void installStatusStrip() {
    wrapMethod([NSWindow class], @selector(orderWindow:relativeTo:), orderWindow,
               originalOrderWindow);
}

void addToStatusStrip(VeltrixStatusBarButton* button) {
    buttons().push_back(retainPtr(button));
    [[strip() contentView] addSubview:button];
    layOutStatusStrip();
}

void removeFromStatusStrip(VeltrixStatusBarButton* button) {
    const RetainPtr<VeltrixStatusBarButton> kept = retainPtr(button);
    std::erase(buttons(), kept);
    [button removeFromSuperview];
    layOutStatusStrip();
}

}  // namespace veltrix::gnustep
