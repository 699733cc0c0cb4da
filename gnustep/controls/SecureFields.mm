// What a secure field shows in place of its text. GNUstep's own method never releases the
// attributes, and so loses some memory each time such a field is drawn.
#include "common/RetainPtr.h"

#import <AppKit/AppKit.h>

using veltrix::adoptNS;
using veltrix::RetainPtr;

@interface NSCell (Attributes)
- (NSDictionary*)_nonAutoreleasedTypingAttributes;
@end

@implementation NSSecureTextFieldCell (Supply)

- (NSAttributedString*)_replacementAttributedString {
    const NSUInteger length = [[self stringValue] length];
    NSString* const bullets = [@"" stringByPaddingToLength:length
                                                withString:@"\u2022"
                                           startingAtIndex:0];
    const RetainPtr<NSDictionary> attributes = adoptNS([self _nonAutoreleasedTypingAttributes]);
    return adoptNS([[NSAttributedString alloc] initWithString:bullets attributes:attributes.get()])
        .autorelease();
}

@end
