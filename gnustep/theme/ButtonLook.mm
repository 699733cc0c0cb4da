// Buttons: the title in the colour that the bezel asks for.
#import <AppKit/AppKit.h>

#include "gnustep/theme/Palette.h"

namespace palette = veltrix::gnustep::palette;

@implementation NSButtonCell (Look)

// The window shows through at the rounded corners.
- (BOOL)isOpaque {
    return NO;
}

- (NSColor*)textColor {
    if (![self isEnabled])
        return palette::disabledText();
    if ([self isBordered] && [[self keyEquivalent] isEqualToString:@"\r"])
        return palette::onAccent();
    return palette::text();
}

@end
