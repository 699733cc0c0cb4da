// Buttons, fields and scrollers.
#include "gnustep/theme/LightTheme.h"

#include "gnustep/theme/Palette.h"

namespace palette = veltrix::gnustep::palette;
using veltrix::gnustep::kCornerRadius;
using veltrix::gnustep::roundedEdge;

namespace {

constexpr CGFloat kScrollerWidth = 12;

bool isPressed(GSThemeControlState state) {
    return state == GSThemeHighlightedState || state == GSThemeHighlightedFirstResponderState ||
           state == GSThemeSelectedState || state == GSThemeSelectedFirstResponderState;
}

bool isDefaultButton(NSCell* cell) {
    return [[cell keyEquivalent] isEqualToString:@"\r"];
}

void paintBox(NSRect rect, NSColor* fill, NSColor* edge) {
    NSBezierPath* const path = roundedEdge(rect, kCornerRadius);
    [fill setFill];
    [path fill];
    [edge setStroke];
    [path stroke];
}

}  // namespace

@implementation VeltrixLightTheme (Controls)

- (void)drawButton:(NSRect)frame
                in:(NSCell*)cell
              view:(NSView*)view
             style:(int)style
             state:(GSThemeControlState)state {
    (void)view;
    (void)style;
    if (![cell isEnabled])
        paintBox(frame, palette::controlDisabled(), palette::hairline());
    else if (isDefaultButton(cell))
        paintBox(frame, isPressed(state) ? palette::accentPressed() : palette::accent(),
                 palette::accentPressed());
    else
        paintBox(frame, isPressed(state) ? palette::controlPressed() : palette::control(),
                 palette::controlEdge());
}

- (GSThemeMargins)buttonMarginsForCell:(NSCell*)cell
                                 style:(int)style
                                 state:(GSThemeControlState)state {
    (void)cell;
    (void)state;
    if (style == NSBezelStyleRounded)
        return {12, 12, 5.5, 5.5};
    return {4, 4, 4, 4};
}

// The library adds a picture of a return arrow here.
- (void)setKeyEquivalent:(NSString*)key forButtonCell:(NSButtonCell*)cell {
    (void)key;
    (void)cell;
}

- (void)drawFocusFrame:(NSRect)frame view:(NSView*)view {
    // Of a button the library names the part that holds the title.
    if ([view isKindOfClass:[NSButton class]] && [(NSButton*)view isBordered])
        frame = [view bounds];
    NSBezierPath* const path = roundedEdge(NSInsetRect(frame, 0.5, 0.5), kCornerRadius - 0.5);
    [path setLineWidth:2];
    [palette::focusRing() setStroke];
    [path stroke];
}

- (NSRect)drawWhiteBezel:(NSRect)border withClip:(NSRect)clip {
    (void)clip;
    paintBox(border, palette::field(), palette::controlEdge());
    return NSInsetRect(border, 2, 2);
}

- (NSRect)drawGrayBezel:(NSRect)border withClip:(NSRect)clip {
    return [self drawWhiteBezel:border withClip:clip];
}

- (NSRect)drawGroove:(NSRect)border withClip:(NSRect)clip {
    (void)clip;
    [palette::hairline() set];
    NSFrameRect(border);
    return NSInsetRect(border, 2, 2);
}

- (NSRect)drawButton:(NSRect)border withClip:(NSRect)clip {
    (void)clip;
    [palette::control() set];
    NSRectFill(border);
    return border;
}

- (NSRect)drawDarkButton:(NSRect)border withClip:(NSRect)clip {
    return [self drawButton:border withClip:clip];
}

- (float)defaultScrollerWidth {
    return kScrollerWidth;
}

// A bar without arrows or a bezel: a rounded knob on the window's own colour.
- (void)drawScrollerRect:(NSRect)rect
                  inView:(NSView*)view
                 hitPart:(NSScrollerPart)hitPart
            isHorizontal:(BOOL)isHorizontal {
    (void)hitPart;
    (void)isHorizontal;
    NSScroller* const scroller = (NSScroller*)view;
    [palette::window() set];
    NSRectFill(rect);
    if (![scroller isEnabled])
        return;
    const NSRect knob = NSInsetRect([scroller rectForPart:NSScrollerKnob], 3, 3);
    const CGFloat radius = MIN(NSWidth(knob), NSHeight(knob)) / 2;
    [palette::scrollKnob() setFill];
    [[NSBezierPath bezierPathWithRoundedRect:knob xRadius:radius yRadius:radius] fill];
}

@end
