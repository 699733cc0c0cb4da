#include "gnustep/application/Opener.h"

#import <AppKit/AppKit.h>

@implementation NSWorkspace (Supply)

// The library's own looks for a GNUstep service that nobody has, and says so in an alert.
- (BOOL)openURL:(NSURL*)url {
    NSString* const target = [url isFileURL] ? [url path] : [url absoluteString];
    return [target length] > 0 && veltrix::gnustep::openWithDesktop([target UTF8String]);
}

@end
