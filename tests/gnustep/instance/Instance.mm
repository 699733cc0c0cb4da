// A program that obeys the rule of one instance and tells on its standard output, a line each, what
// happens to it. Its window is hidden from the beginning.
#import <AppKit/AppKit.h>

#include "common/RetainPtr.h"

#include <cstdio>
#include <string>

#include <unistd.h>

using veltrix::adoptNS;
using veltrix::RetainPtr;

static void tell(const std::string& line) {
    std::puts(line.c_str());
    std::fflush(stdout);
}

@interface Instance : NSObject <NSApplicationDelegate> {
    RetainPtr<NSWindow> _window;
}
@end

@implementation Instance

- (void)applicationDidFinishLaunching:(NSNotification*)notification {
    NSString* const identifier = [[NSBundle mainBundle] bundleIdentifier];
    std::string pids = "running";
    NSRunningApplication* other = nil;
    for (NSRunningApplication* application in
         [NSRunningApplication runningApplicationsWithBundleIdentifier:identifier]) {
        pids += " " + std::to_string([application processIdentifier]);
        if (!other && [application processIdentifier] != getpid())
            other = application;
    }
    tell(pids);
    if (other) {
        const bool sent = [other activateWithOptions:NSApplicationActivateIgnoringOtherApps];
        tell(sent ? "activated" : "not activated");
        [NSApp terminate:nil];
        return;
    }
    _window = adoptNS([[NSWindow alloc] initWithContentRect:NSMakeRect(0, 0, 200, 100)
                                                  styleMask:NSWindowStyleMaskTitled
                                                    backing:NSBackingStoreBuffered
                                                      defer:NO]);
    [_window setReleasedWhenClosed:NO];
}

- (BOOL)applicationShouldHandleReopen:(NSApplication*)application hasVisibleWindows:(BOOL)visible {
    tell(visible ? "reopened with windows" : "reopened without windows");
    [_window makeKeyAndOrderFront:nil];
    tell([_window isVisible] ? "visible" : "hidden");
    [NSApp terminate:nil];
    return NO;
}

@end

int main() {
    @autoreleasepool {
        NSApplication* const application = [NSApplication sharedApplication];
        [application setDelegate:adoptNS([[Instance alloc] init]).leak()];
        [application run];
    }
    return 0;
}
