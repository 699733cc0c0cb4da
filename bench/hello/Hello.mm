// The program that the companion is measured against: as small as one with a window can be. The
// window is as large as the companion's, so that its pixels weigh the same, and one field holds the
// keyboard, so that its insertion point does what it does there.
#include "common/RetainPtr.h"

#import <AppKit/AppKit.h>

using veltrix::adoptNS;
using veltrix::RetainPtr;

namespace {

constexpr NSRect kContent = {{0, 0}, {760, 640}};
constexpr NSRect kField = {{24, 590}, {712, 26}};

}  // namespace

@interface HelloApp : NSObject <NSApplicationDelegate> {
    RetainPtr<NSWindow> _window;
}
@end

@implementation HelloApp

- (void)applicationDidFinishLaunching:(NSNotification*)notification {
    _window = adoptNS([[NSWindow alloc]
        initWithContentRect:kContent
                  styleMask:NSWindowStyleMaskTitled | NSWindowStyleMaskClosable |
                            NSWindowStyleMaskMiniaturizable | NSWindowStyleMaskResizable
                    backing:NSBackingStoreBuffered
                      defer:NO]);
    const RetainPtr<NSTextField> field = adoptNS([[NSTextField alloc] initWithFrame:kField]);
    [field setStringValue:@"Hello, world"];
    [[_window contentView] addSubview:field];
    [_window setInitialFirstResponder:field];
    [_window setTitle:@"Hello"];
    [_window center];
    [_window makeKeyAndOrderFront:nil];
    [NSApp activateIgnoringOtherApps:YES];
}

@end

int main() {
    @autoreleasepool {
        NSApplication* const application = [NSApplication sharedApplication];
        const RetainPtr<HelloApp> delegate = adoptNS([[HelloApp alloc] init]);
        [application setDelegate:delegate];
        [application run];
    }
    return 0;
}
