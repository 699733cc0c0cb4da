// The button of a status item. It shows the item's menu instead of sending an action if there is
// one.
#pragma once

#import <AppKit/AppKit.h>

@interface VeltrixStatusBarButton : NSStatusBarButton {
    NSStatusItem* _item;  // which owns this button
    NSTrackingRectTag _trackingRect;
    BOOL _hovered;
    BOOL _menuOpen;
}
- (instancetype)initWithItem:(NSStatusItem*)item;
- (void)forgetItem;
// As wide as the item's length asks for.
- (CGFloat)widthInBarOfThickness:(CGFloat)thickness;
@end
