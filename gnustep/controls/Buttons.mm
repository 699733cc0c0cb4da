#import <AppKit/AppKit.h>

#include "common/RetainPtr.h"
#include "gnustep/theme/LightTheme.h"

#include <algorithm>
#include <cmath>

using veltrix::adoptNS;
using veltrix::RetainPtr;

@implementation NSButton (ConvenienceSupply)

+ (instancetype)buttonWithTitle:(NSString*)title target:(id)target action:(SEL)action {
    RetainPtr<NSButton> button = adoptNS([[self alloc] initWithFrame:NSZeroRect]);
    [button setButtonType:NSButtonTypeMomentaryPushIn];
    [button setBezelStyle:NSBezelStyleRounded];
    [button setTitle:title];
    [button setTarget:target];
    [button setAction:action];
    [button setTranslatesAutoresizingMaskIntoConstraints:NO];
    [button sizeToFit];
    return button.autorelease();
}

+ (instancetype)buttonWithTitle:(NSString*)title
                          image:(NSImage*)image
                         target:(id)target
                         action:(SEL)action {
    NSButton* const button = [self buttonWithTitle:title target:target action:action];
    [button setImage:image];
    [button setImagePosition:NSImageLeading];
    return button;
}

+ (instancetype)checkboxWithTitle:(NSString*)title target:(id)target action:(SEL)action {
    NSButton* const button = [self buttonWithTitle:title target:target action:action];
    [button setButtonType:NSButtonTypeSwitch];
    [button setBordered:NO];
    [button setImagePosition:NSImageLeading];
    [[button cell] setImageDimsWhenDisabled:YES];
    [button setAlignment:NSTextAlignmentLeft];
    return button;
}

@end

@implementation NSButton (Tracking)

// The library shows a button as pressed until its action has returned, which for one that runs a
// modal session is much later than the press.
- (BOOL)sendAction:(SEL)action to:(id)target {
    [self highlight:NO];
    [self setNeedsDisplay:YES];
    [[self window] displayIfNeeded];
    [[self window] flushWindow];
    return [super sendAction:action to:target];
}

@end

@implementation NSButton (LayoutSupply)
- (NSSize)intrinsicContentSize {
    const NSSize size = [[self cell] cellSize];
    const CGFloat least = [self isBordered] ? veltrix::gnustep::kControlHeight : 0;
    return NSMakeSize(std::ceil(size.width), std::max(std::ceil(size.height), least));
}
@end
