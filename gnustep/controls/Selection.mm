// Selecting text touches no pasteboard, as on macOS. The library's own hands every selection to the
// pasteboard server for X's middle mouse button, and starts the server for it when the first field
// is entered; should it end, the next selection ends in an exception.
#import <AppKit/AppKit.h>

@implementation NSTextView (Selection)

- (void)copySelection {
}

@end
