#import <AppKit/AppKit.h>

#include "common/RetainPtr.h"
#include "gnustep/runtime/Immortal.h"
#include "gnustep/statusbar/StatusStrip.h"

using veltrix::adoptNS;
using veltrix::RetainPtr;
using veltrix::retainPtr;

// The library's own status items hold nothing that could be shown.
@interface VeltrixStatusItem : NSStatusItem {
    RetainPtr<VeltrixStatusBarButton> _button;
    RetainPtr<NSMenu> _attachedMenu;
    CGFloat _itemLength;
}
- (instancetype)initWithLength:(CGFloat)length;
- (void)removeFromBar;
@end

@implementation VeltrixStatusItem

- (instancetype)initWithLength:(CGFloat)length {
    self = [super init];
    if (self) {
        _itemLength = length;
        _button = adoptNS([[VeltrixStatusBarButton alloc] initWithItem:self]);
        veltrix::gnustep::addToStatusStrip(_button);
    }
    return self;
}

- (void)dealloc {
    [self removeFromBar];
    [super dealloc];
}

- (void)removeFromBar {
    if (!_button)
        return;
    [_button forgetItem];
    veltrix::gnustep::removeFromStatusStrip(_button);
    _button = nil;
}

- (NSStatusBarButton*)button {
    return _button;
}

- (NSStatusBar*)statusBar {
    return [NSStatusBar systemStatusBar];
}

- (NSMenu*)menu {
    return _attachedMenu;
}

- (void)setMenu:(NSMenu*)menu {
    _attachedMenu = retainPtr(menu);
}

- (CGFloat)length {
    return _itemLength;
}

- (void)setLength:(CGFloat)length {
    _itemLength = length;
    veltrix::gnustep::layOutStatusStrip();
}

@end

@implementation NSStatusItem (ButtonSupply)
- (NSStatusBarButton*)button {
    return nil;
}
@end

@implementation NSStatusBar (Supply)

+ (NSStatusBar*)systemStatusBar {
    static veltrix::gnustep::Immortal<RetainPtr<NSStatusBar>> only(
        adoptNS([[NSStatusBar alloc] init]));
    return *only;
}

- (NSStatusItem*)statusItemWithLength:(CGFloat)length {
    return adoptNS([[VeltrixStatusItem alloc] initWithLength:length]).autorelease();
}

- (void)removeStatusItem:(NSStatusItem*)item {
    [veltrix::dynamicCast<VeltrixStatusItem>(item) removeFromBar];
}

- (CGFloat)thickness {
    return veltrix::gnustep::kStatusBarThickness;
}

- (BOOL)isVertical {
    return NO;
}

@end
