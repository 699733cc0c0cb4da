// Labels and text fields.
#import <AppKit/AppKit.h>

#include "common/RetainPtr.h"
#include "gnustep/controls/TextMetrics.h"
#include "gnustep/layout/Measure.h"
#include "gnustep/runtime/Immortal.h"
#include "gnustep/runtime/SideTable.h"

#include <cmath>

namespace {

using veltrix::adoptNS;
using veltrix::RetainPtr;

// The cell keeps this far from either side of its frame.
constexpr CGFloat kTextInset = 2;

struct FieldRow {
    CGFloat preferredMaxLayoutWidth = 0;
};

veltrix::gnustep::SideTable<FieldRow>& fields() {
    static veltrix::gnustep::Immortal<veltrix::gnustep::SideTable<FieldRow>> table;
    return *table;
}

void makeLabel(NSTextField* field) {
    [field setEditable:NO];
    [field setSelectable:NO];
    [field setBezeled:NO];
    [field setBordered:NO];
    [field setDrawsBackground:NO];
    [field setTranslatesAutoresizingMaskIntoConstraints:NO];
}

}  // namespace

// Text that a person may want to copy. It takes the keyboard when clicked, never by tabbing or as
// a window's first responder, where it would show up selected.
@interface VeltrixWrappingLabel : NSTextField {
    bool _clicked;
}
@end

@implementation VeltrixWrappingLabel

- (void)mouseDown:(NSEvent*)event {
    _clicked = true;
    [super mouseDown:event];
    _clicked = false;
}

- (BOOL)acceptsFirstResponder {
    return _clicked && [super acceptsFirstResponder];
}

- (BOOL)canBecomeKeyView {
    return NO;
}

- (NSSize)intrinsicContentSize {
    const CGFloat width = [self preferredMaxLayoutWidth];
    if (width <= 0)
        return NSMakeSize(NSViewNoIntrinsicMetric, NSViewNoIntrinsicMetric);
    return NSMakeSize(width, [self contentHeightAtWidth:width]);
}

- (CGFloat)contentHeightAtWidth:(CGFloat)width {
    const NSSize room = NSMakeSize(std::max<CGFloat>(1, width - 2 * kTextInset), 1e6);
    const NSRect text =
        [[self attributedStringValue] boundingRectWithSize:room
                                                   options:NSStringDrawingUsesLineFragmentOrigin];
    // An empty label still has one line.
    return std::ceil(std::max(NSHeight(text), veltrix::gnustep::lineHeight([self font])));
}

@end

@implementation NSTextField (ConvenienceSupply)

+ (instancetype)labelWithString:(NSString*)string {
    RetainPtr<NSTextField> label = adoptNS([[self alloc] initWithFrame:NSZeroRect]);
    makeLabel(label);
    [[label cell] setLineBreakMode:NSLineBreakByClipping];
    [label setStringValue:string];
    [label sizeToFit];
    return label.autorelease();
}

+ (instancetype)wrappingLabelWithString:(NSString*)string {
    RetainPtr<NSTextField> label = adoptNS([[VeltrixWrappingLabel alloc] initWithFrame:NSZeroRect]);
    makeLabel(label);
    [label setSelectable:YES];
    [[label cell] setWraps:YES];
    [[label cell] setLineBreakMode:NSLineBreakByWordWrapping];
    [label setStringValue:string];
    return label.autorelease();
}

+ (instancetype)textFieldWithString:(NSString*)string {
    RetainPtr<NSTextField> field = adoptNS([[self alloc] initWithFrame:NSZeroRect]);
    [field setUsesSingleLineMode:YES];
    [field setTranslatesAutoresizingMaskIntoConstraints:NO];
    [field setStringValue:string];
    return field.autorelease();
}

- (NSString*)placeholderString {
    return [[self cell] placeholderString];
}

- (void)setPlaceholderString:(NSString*)string {
    [[self cell] setPlaceholderString:string];
    [self setNeedsDisplay:YES];
}

- (CGFloat)preferredMaxLayoutWidth {
    const FieldRow* const row = fields().find(self);
    return row ? row->preferredMaxLayoutWidth : 0;
}

- (void)setPreferredMaxLayoutWidth:(CGFloat)width {
    fields()[self].preferredMaxLayoutWidth = width;
    [self invalidateIntrinsicContentSize];
}

@end

@implementation NSTextField (LayoutSupply)

// An editable field has no width of its own: it takes what is there.
- (NSSize)intrinsicContentSize {
    const NSSize size = [[self cell] cellSize];
    return NSMakeSize([self isEditable] ? NSViewNoIntrinsicMetric : std::ceil(size.width),
                      std::ceil(size.height));
}

@end

@implementation NSControl (CellAttributeSupply)

- (NSLineBreakMode)lineBreakMode {
    return [[self cell] lineBreakMode];
}

- (void)setLineBreakMode:(NSLineBreakMode)mode {
    [[self cell] setLineBreakMode:mode];
    [self invalidateIntrinsicContentSize];
}

- (BOOL)usesSingleLineMode {
    return [[self cell] usesSingleLineMode];
}

// The library remembers the mode but wraps and clips the text all the same.
- (void)setUsesSingleLineMode:(BOOL)single {
    [[self cell] setUsesSingleLineMode:single];
    [[self cell] setLineBreakMode:single ? NSLineBreakByClipping : NSLineBreakByWordWrapping];
    [[self cell] setScrollable:single];
}

@end
