// Process entry.
#import "app/DesktopApp.h"
#include "common/Dispatch.h"
#include "common/Pipe.h"
#include "common/RetainPtr.h"

#import <AppKit/AppKit.h>

namespace {

// Both live as long as the process.
veltrix::RetainPtr<NSApplication> application;
veltrix::RetainPtr<DesktopApp> desktopApp;

}  // namespace

int main() {
    @autoreleasepool {
        veltrix::ignoreBrokenPipes();
        application = [NSApplication sharedApplication];
        veltrix::attachMainQueueToRunLoop();  // no threads before: a process of one starts faster
        desktopApp = veltrix::adoptNS([[DesktopApp alloc] init]);
        [application setDelegate:desktopApp];
        [application run];
    }
    return 0;
}
