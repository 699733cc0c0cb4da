#include "gnustep/statusbar/MenuPanel.h"

#include "common/RetainPtr.h"
#include "gnustep/theme/Palette.h"

#include <algorithm>

namespace palette = veltrix::gnustep::palette;
using veltrix::adoptNS;

namespace {

constexpr float kTextInset = 12;
constexpr CGFloat kPadding = 5;  // above the first item and below the last
constexpr CGFloat kGap = 4;      // to what the menu belongs to and to the edge of the screen

}  // namespace

@interface VeltrixMenuBackdrop : NSView
@end

@implementation VeltrixMenuBackdrop
- (void)drawRect:(NSRect)dirty {
    (void)dirty;
    [palette::menu() set];
    NSRectFill([self bounds]);
    [palette::windowEdge() set];
    NSFrameRect([self bounds]);
}
@end

@implementation VeltrixMenuPanel

- (instancetype)initWithMenu:(NSMenu*)menu {
    self = [super initWithContentRect:NSMakeRect(0, 0, 10, 10)
                            styleMask:NSWindowStyleMaskBorderless
                              backing:NSBackingStoreBuffered
                                defer:NO];
    if (self) {
        [self setReleasedWhenClosed:NO];
        [self setHidesOnDeactivate:NO];
        [self setExcludedFromWindowsMenu:YES];
        [self setLevel:NSPopUpMenuWindowLevel];
        [self setAcceptsMouseMovedEvents:YES];
        [self setContentView:adoptNS([[VeltrixMenuBackdrop alloc] initWithFrame:NSZeroRect]).get()];
        const auto view = adoptNS([[NSMenuView alloc] initWithFrame:NSZeroRect]);
        _menuView = view;
        [_menuView setMenu:menu];
        [_menuView setHorizontalEdgePadding:kTextInset];
        [_menuView sizeToFit];
        [[self contentView] addSubview:_menuView];
    }
    return self;
}

// The menu lets the view know of changes as long as they are tied.
- (void)dealloc {
    [_menuView setMenu:nil];
    [super dealloc];
}

- (NSMenuView*)menuView {
    return _menuView;
}

- (BOOL)canBecomeKeyWindow {
    return NO;
}

- (BOOL)canBecomeMainWindow {
    return NO;
}

- (BOOL)worksWhenModal {
    return YES;
}

- (void)dropDownFrom:(NSRect)anchor onScreen:(NSScreen*)screen {
    const NSSize items = [_menuView frame].size;
    const NSSize size = NSMakeSize(items.width + 2, items.height + 2 * kPadding);
    const CGFloat x = std::min(NSMinX(anchor), NSMaxX([screen frame]) - size.width - kGap);
    [self setFrame:NSMakeRect(x, NSMinY(anchor) - size.height - kGap, size.width, size.height)
           display:NO];
    [_menuView setFrameOrigin:NSMakePoint(1, kPadding)];
    [self orderFrontRegardless];
    [self display];
}

@end
