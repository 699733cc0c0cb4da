#import <AppKit/AppKit.h>

@implementation NSFont (WeightSupply)

// The system has two weights here: regular, and semibold for everything that is heavier than
// medium.
+ (NSFont*)systemFontOfSize:(CGFloat)size weight:(NSFontWeight)weight {
    return weight > NSFontWeightMedium ? [self boldSystemFontOfSize:size]
                                       : [self systemFontOfSize:size];
}

@end
