#include "gnustep/statusbar/StatusButton.h"

#include "gnustep/statusbar/MenuTracking.h"
#include "gnustep/statusbar/StatusStrip.h"
#include "gnustep/theme/Palette.h"

#include <cmath>

namespace palette = veltrix::gnustep::palette;

namespace {
constexpr CGFloat kImagePadding = 8;
}

@implementation VeltrixStatusBarButton

- (instancetype)initWithItem:(NSStatusItem*)item {
    self = [super initWithFrame:NSZeroRect];
    if (self) {
        _item = item;
        [self setBordered:NO];
        [self setTitle:@""];
        [self setRefusesFirstResponder:YES];
    }
    return self;
}

- (void)forgetItem {
    _item = nil;
}

- (CGFloat)widthInBarOfThickness:(CGFloat)thickness {
    const CGFloat length = [_item length];
    if (length == NSSquareStatusItemLength)
        return thickness;
    if (length == NSVariableStatusItemLength)
        return std::ceil([[self cell] cellSize].width) + 2 * kImagePadding;
    return length;
}

- (void)setTitle:(NSString*)title {
    [super setTitle:title];
    [self setImagePosition:[title length] > 0 ? NSImageLeading : NSImageOnly];
    veltrix::gnustep::layOutStatusStrip();
}

- (void)setImage:(NSImage*)image {
    [super setImage:image];
    veltrix::gnustep::layOutStatusStrip();
}

- (BOOL)acceptsFirstMouse:(NSEvent*)event {
    (void)event;
    return YES;
}

- (void)setFrame:(NSRect)frame {
    [super setFrame:frame];
    if (_trackingRect)
        [self removeTrackingRect:_trackingRect];
    _trackingRect = [self addTrackingRect:[self bounds] owner:self userData:nil assumeInside:NO];
}

- (void)mouseEntered:(NSEvent*)event {
    (void)event;
    [self setHovered:YES];
}

- (void)mouseExited:(NSEvent*)event {
    (void)event;
    [self setHovered:NO];
}

- (void)setHovered:(BOOL)hovered {
    _hovered = hovered;
    [self setNeedsDisplay:YES];
}

- (void)mouseDown:(NSEvent*)event {
    if ([_item menu])
        [self openMenu];
    else
        [super mouseDown:event];
}

- (void)performClick:(id)sender {
    if ([_item menu])
        [self openMenu];
    else
        [super performClick:sender];
}

- (void)openMenu {
    if (_menuOpen || ![self isEnabled] || [[_item menu] numberOfItems] == 0)
        return;
    _menuOpen = YES;
    [self display];
    NSRect anchor = [self convertRect:[self bounds] toView:nil];
    anchor.origin = [[self window] convertBaseToScreen:anchor.origin];
    const auto closed = [self] {
        _menuOpen = NO;
        [self setNeedsDisplay:YES];
    };
    veltrix::gnustep::trackMenu([_item menu], anchor, [[self window] screen], closed);
}

- (void)drawRect:(NSRect)dirty {
    (void)dirty;
    if (_hovered || _menuOpen) {
        [(_menuOpen ? palette::selectedText() : palette::controlPressed()) setFill];
        [[NSBezierPath bezierPathWithRoundedRect:NSInsetRect([self bounds], 2, 2)
                                         xRadius:5
                                         yRadius:5] fill];
    }
    [[self cell] drawInteriorWithFrame:[self bounds] inView:self];
}

@end
