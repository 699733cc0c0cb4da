// Ties the Linux dispatcher's main queue to GNUstep's run loop.
#include "common/MainQueue_linux.h"
#include "common/Dispatch.h"

#import <AppKit/AppKit.h>

@interface VeltrixMainQueueDrain : NSObject
+ (void)drain:(id)ignored;
@end

@implementation VeltrixMainQueueDrain
+ (void)drain:(id)ignored {
    veltrix::drainMainQueue();
}
@end

namespace veltrix {
namespace {

// Runs on worker threads, which have no autorelease pool of their own.
void scheduleDrain() {
    @autoreleasepool {
        NSArray* const modes =
            @[ NSDefaultRunLoopMode, NSModalPanelRunLoopMode, NSEventTrackingRunLoopMode ];
        [VeltrixMainQueueDrain performSelectorOnMainThread:@selector(drain:)
                                                withObject:nil
                                             waitUntilDone:NO
                                                     modes:modes];
    }
}

}  // namespace

void attachMainQueueToRunLoop() {
    setMainQueueWaker(scheduleDrain);
}

}  // namespace veltrix
