// Pull-down menus.
#include "gnustep/theme/LightTheme.h"

#include "gnustep/theme/Palette.h"

namespace palette = veltrix::gnustep::palette;

namespace {
constexpr CGFloat kItemHeight = 26;
constexpr CGFloat kSeparatorHeight = 11;
}  // namespace

@implementation VeltrixLightTheme (Menu)

- (NSColor*)menuBackgroundColor {
    return palette::menu();
}

- (NSColor*)menuItemBackgroundColor {
    return palette::menu();
}

// The window around a menu has the border.
- (void)drawBackgroundForMenuView:(NSMenuView*)view
                        withFrame:(NSRect)bounds
                        dirtyRect:(NSRect)dirty
                       horizontal:(BOOL)horizontal {
    (void)view;
    (void)bounds;
    (void)horizontal;
    [palette::menu() set];
    NSRectFill(dirty);
}

- (BOOL)drawsBorderForMenuItemCell:(NSMenuItemCell*)cell
                             state:(GSThemeControlState)state
                      isHorizontal:(BOOL)horizontal {
    (void)cell;
    (void)state;
    (void)horizontal;
    return NO;
}

- (void)drawBorderAndBackgroundForMenuItemCell:(NSMenuItemCell*)cell
                                     withFrame:(NSRect)frame
                                        inView:(NSView*)view
                                         state:(GSThemeControlState)state
                                  isHorizontal:(BOOL)horizontal {
    (void)view;
    (void)state;
    (void)horizontal;
    [palette::menu() set];
    NSRectFill(frame);
    if (![cell isHighlighted] || ![[cell menuItem] isEnabled])
        return;
    [palette::accent() setFill];
    [[NSBezierPath bezierPathWithRoundedRect:NSInsetRect(frame, 4, 1) xRadius:5 yRadius:5] fill];
}

- (NSColor*)menuSeparatorColor {
    return palette::hairline();
}

- (CGFloat)menuSeparatorInset {
    return 12;
}

- (CGFloat)menuItemHeight {
    return kItemHeight;
}

- (CGFloat)menuSeparatorHeight {
    return kSeparatorHeight;
}

@end
