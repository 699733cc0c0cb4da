// Title bars and borders, which GNUstep draws itself where no window manager does.
#include "gnustep/theme/LightTheme.h"

#include "gnustep/theme/Palette.h"

namespace palette = veltrix::gnustep::palette;

namespace {

constexpr CGFloat kTitleBarHeight = 30;
constexpr CGFloat kResizeBarHeight = 8;
constexpr CGFloat kTitleButtonSize = 16;

// What the window border is told of the window's state.
enum InputState { kKeyWindow = 0, kOtherWindow = 1, kMainWindow = 2 };

void fill(NSRect rect, NSColor* color) {
    [color set];
    NSRectFill(rect);
}

void drawTitle(NSString* title, NSRect bar, NSColor* color) {
    NSDictionary* const attributes = @{
        NSFontAttributeName : [NSFont boldSystemFontOfSize:13],
        NSForegroundColorAttributeName : color,
    };
    const NSSize size = [title sizeWithAttributes:attributes];
    [title drawAtPoint:NSMakePoint(floor(NSMidX(bar) - size.width / 2),
                                   floor(NSMidY(bar) - size.height / 2))
        withAttributes:attributes];
}

}  // namespace

@implementation VeltrixLightTheme (Window)

- (float)titlebarHeight {
    return kTitleBarHeight;
}

- (float)resizebarHeight {
    return kResizeBarHeight;
}

- (float)titlebarButtonSize {
    return kTitleButtonSize;
}

- (float)titlebarPaddingTop {
    return (kTitleBarHeight - kTitleButtonSize) / 2;
}

- (float)titlebarPaddingLeft {
    return 8;
}

- (float)titlebarPaddingRight {
    return 8;
}

- (NSButton*)standardWindowButton:(NSWindowButton)kind forStyleMask:(NSUInteger)mask {
    NSButton* const button = [super standardWindowButton:kind forStyleMask:mask];
    [button setBordered:NO];
    return button;
}

- (void)drawWindowBorder:(NSRect)rect
               withFrame:(NSRect)frame
            forStyleMask:(unsigned int)styleMask
                   state:(int)inputState
                andTitle:(NSString*)title {
    (void)rect;
    const bool active = inputState == kKeyWindow || inputState == kMainWindow;
    constexpr unsigned kBarred =
        NSWindowStyleMaskTitled | NSWindowStyleMaskClosable | NSWindowStyleMaskMiniaturizable;
    if (styleMask & kBarred) {
        const NSRect bar =
            NSMakeRect(0, NSHeight(frame) - kTitleBarHeight, NSWidth(frame), kTitleBarHeight);
        fill(bar, active ? palette::titleBar() : palette::titleBarInactive());
        fill(NSMakeRect(0, NSMinY(bar), NSWidth(bar), 1), palette::hairline());
        if (styleMask & NSWindowStyleMaskTitled)
            drawTitle(title, bar, active ? palette::text() : palette::secondaryText());
    }
    if (styleMask & NSWindowStyleMaskResizable)
        fill(NSMakeRect(0, 0, NSWidth(frame), kResizeBarHeight), palette::window());
    if (styleMask & (kBarred | NSWindowStyleMaskResizable)) {
        [palette::windowEdge() set];
        NSFrameRect(NSMakeRect(0, 0, NSWidth(frame), NSHeight(frame)));
    }
}

@end
