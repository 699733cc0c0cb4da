// Text fields: room around the text, a rim in the accent colour while being edited, and the
// placeholder of an empty field also when its value is an empty string.
#import <AppKit/AppKit.h>

#include "common/RetainPtr.h"
#include "gnustep/controls/TextMetrics.h"
#include "gnustep/runtime/MethodWrap.h"
#include "gnustep/runtime/SetUp.h"
#include "gnustep/theme/LightTheme.h"
#include "gnustep/theme/Palette.h"

#include <cmath>

namespace palette = veltrix::gnustep::palette;

namespace {

// Of which the text itself leaves two points free.
constexpr CGFloat kPaddingAcross = 8;
constexpr CGFloat kTextInset = 2;
constexpr CGFloat kPaddingDown = 5;

void paintField(NSRect frame, bool enabled, bool edited) {
    NSBezierPath* const path =
        veltrix::gnustep::roundedEdge(frame, veltrix::gnustep::kCornerRadius);
    [(enabled ? palette::field() : palette::controlDisabled()) setFill];
    [path fill];
    [(edited ? palette::accent() : palette::controlEdge()) setStroke];
    [path stroke];
    if (!edited)
        return;
    [palette::focusRing() setStroke];
    [veltrix::gnustep::roundedEdge(NSInsetRect(frame, 1, 1), veltrix::gnustep::kCornerRadius - 1)
        stroke];
}

}  // namespace

@implementation NSTextFieldCell (Look)

- (NSSize)cellSize {
    if (![self isBezeled])
        return [super cellSize];
    const NSSize text = [[self attributedStringValue] size];
    return NSMakeSize(std::ceil(text.width) + 2 * kPaddingAcross,
                      std::max(veltrix::gnustep::lineHeight([self font]) + 2 * kPaddingDown,
                               veltrix::gnustep::kControlHeight));
}

- (NSRect)titleRectForBounds:(NSRect)bounds {
    if (![self isBezeled])
        return [super titleRectForBounds:bounds];
    const CGFloat line = veltrix::gnustep::lineHeight([self font]);
    const CGFloat room = NSHeight(bounds);
    return NSMakeRect(NSMinX(bounds) + kPaddingAcross - kTextInset,
                      NSMinY(bounds) + std::ceil((room - line) / 2),
                      NSWidth(bounds) - 2 * (kPaddingAcross - kTextInset), line);
}

// The window shows through at the rounded corners.
- (BOOL)isOpaque {
    return ![self isBezeled] && [self drawsBackground] &&
           [[self backgroundColor] alphaComponent] == 1;
}

- (NSColor*)textColor {
    return [self isEnabled] || ![self isBezeled] ? _text_color : palette::disabledText();
}

- (void)_drawBorderAndBackgroundWithFrame:(NSRect)frame inView:(NSView*)view {
    if ([self isBezeled]) {
        const bool edited = [view isKindOfClass:[NSControl class]] &&
                            [static_cast<NSControl*>(view) currentEditor] != nil;
        paintField(frame, [self isEnabled], edited);
        return;
    }
    if ([self drawsBackground]) {
        [[self backgroundColor] set];
        NSRectFill(frame);
    }
    if ([self isBordered])
        [[GSTheme theme] drawBorderType:NSLineBorder frame:frame view:view];
}

@end

namespace veltrix::gnustep {
namespace {

NSAttributedString* (*originalDrawAttributedString)(id, SEL) = nullptr;

NSAttributedString* drawAttributedString(id self, SEL command) {
    NSString* const placeholder = [self placeholderString];
    if ([[self stringValue] length] > 0 || [placeholder length] == 0)
        return originalDrawAttributedString(self, command);
    NSDictionary* const attributes = @{
        NSFontAttributeName : [self font],
        NSForegroundColorAttributeName : palette::placeholder(),
    };
    return adoptNS([[NSAttributedString alloc] initWithString:placeholder attributes:attributes])
        .autorelease();
}

// The rim comes and goes with the field editor, and a field that is tabbed into comes into view.
void editingBegan(NSView* view) {
    [view setNeedsDisplay:YES];
    [view scrollRectToVisible:[view bounds]];
}

void (*originalEdit)(id, SEL, NSRect, NSView*, NSText*, id, NSEvent*) = nullptr;
void edit(id self, SEL command, NSRect frame, NSView* view, NSText* editor, id delegate,
          NSEvent* event) {
    originalEdit(self, command, frame, view, editor, delegate, event);
    editingBegan(view);
}

void (*originalSelect)(id, SEL, NSRect, NSView*, NSText*, id, NSInteger, NSInteger) = nullptr;
void select(id self, SEL command, NSRect frame, NSView* view, NSText* editor, id delegate,
            NSInteger start, NSInteger length) {
    originalSelect(self, command, frame, view, editor, delegate, start, length);
    editingBegan(view);
}

void (*originalEndEditing)(id, SEL, NSText*) = nullptr;
void endEditing(id self, SEL command, NSText* editor) {
    originalEndEditing(self, command, editor);
    [[self controlView] setNeedsDisplay:YES];
}

}  // namespace

void installFieldLook() {
    wrapMethod([NSCell class], @selector(editWithFrame:inView:editor:delegate:event:), edit,
               originalEdit);
    wrapMethod([NSCell class], @selector(selectWithFrame:inView:editor:delegate:start:length:),
               select, originalSelect);
    wrapMethod([NSCell class], @selector(endEditing:), endEditing, originalEndEditing);
    wrapMethod([NSTextFieldCell class], @selector(_drawAttributedString), drawAttributedString,
               originalDrawAttributedString);
}

}  // namespace veltrix::gnustep
