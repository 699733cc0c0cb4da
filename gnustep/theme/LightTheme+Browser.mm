// The columns of the open panel: rows on white, a chevron where a folder leads on, quiet headers.
#include "gnustep/theme/LightTheme.h"

#include "common/RetainPtr.h"
#include "gnustep/theme/Palette.h"

#include <cmath>

namespace palette = veltrix::gnustep::palette;

namespace {

constexpr CGFloat kRowInset = 4;
constexpr CGFloat kIconSide = 16;
constexpr CGFloat kChevronWidth = 12;

void drawChevron(NSRect place) {
    const NSPoint tip = NSMakePoint(NSMidX(place) + 2, NSMidY(place));
    NSBezierPath* const path = [NSBezierPath bezierPath];
    [path setLineWidth:1.3];
    [path moveToPoint:NSMakePoint(tip.x - 4, tip.y - 4)];
    [path lineToPoint:tip];
    [path lineToPoint:NSMakePoint(tip.x - 4, tip.y + 4)];
    [palette::secondaryText() setStroke];
    [path stroke];
}

void drawIcon(NSImage* icon, NSRect place, NSView* view) {
    [icon drawInRect:NSMakeRect(NSMinX(place), std::floor(NSMidY(place) - kIconSide / 2), kIconSide,
                                kIconSide)
              fromRect:NSZeroRect
             operation:NSCompositingOperationSourceOver
              fraction:1
        respectFlipped:[view isFlipped]
                 hints:nil];
}

void drawName(NSString* name, NSRect place, NSFont* font, NSColor* color,
              NSTextAlignment alignment) {
    const veltrix::RetainPtr<NSMutableParagraphStyle> style =
        veltrix::adoptNS([[NSMutableParagraphStyle alloc] init]);
    [style setLineBreakMode:NSLineBreakByTruncatingMiddle];
    [style setAlignment:alignment];
    NSDictionary* const attributes = @{
        NSFontAttributeName : font,
        NSForegroundColorAttributeName : color,
        NSParagraphStyleAttributeName : style.get(),
    };
    const CGFloat height = std::ceil([name sizeWithAttributes:attributes].height);
    place.origin.y += std::floor((NSHeight(place) - height) / 2);
    place.size.height = height;
    [name drawInRect:place withAttributes:attributes];
}

}  // namespace

@implementation VeltrixLightTheme (Browser)

- (void)drawBrowserInteriorWithFrame:(NSRect)frame
                            withCell:(NSBrowserCell*)cell
                              inView:(NSView*)view
                           withImage:(NSImage*)image
                      alternateImage:(NSImage*)alternateImage
                       isHighlighted:(BOOL)isHighlighted
                               state:(int)state
                              isLeaf:(BOOL)isLeaf {
    (void)alternateImage;
    [isHighlighted || state != NSOffState ? palette::selectedText() : palette::field() setFill];
    NSRectFill(frame);
    NSRect rest = NSInsetRect(frame, kRowInset, 0);
    if (image) {
        drawIcon(image, rest, view);
        rest.origin.x += kIconSide + kRowInset;
        rest.size.width -= kIconSide + kRowInset;
    }
    if (!isLeaf) {
        NSRect chevron;
        NSDivideRect(rest, &chevron, &rest, kChevronWidth, NSMaxXEdge);
        drawChevron(chevron);
    }
    drawName([cell stringValue], rest, [cell font],
             [cell isEnabled] ? palette::text() : palette::disabledText(), NSTextAlignmentLeft);
}

- (void)drawBrowserHeaderCell:(NSTableHeaderCell*)cell
                    withFrame:(NSRect)frame
                       inView:(NSView*)view {
    (void)view;
    [palette::window() setFill];
    NSRectFill(frame);
    drawName([cell stringValue], NSInsetRect(frame, kRowInset, 0), [cell font],
             palette::secondaryText(), NSTextAlignmentCenter);
}

@end
