// Events that the program posts to itself are handled at once, wherever they are posted from.
#import <AppKit/AppKit.h>

#include "common/RetainPtr.h"
#include "support/MethodSwap.h"
#include "support/WaitFor.h"

#include <chrono>
#include <thread>

#include <gtest/gtest.h>

using veltrix::RetainPtr;

namespace {

constexpr NSInteger kMark = 7;

NSEvent* makeEvent() {
    return [NSEvent otherEventWithType:NSEventTypeApplicationDefined
                              location:NSZeroPoint
                         modifierFlags:0
                             timestamp:0
                          windowNumber:0
                               context:nil
                               subtype:0
                                 data1:kMark
                                 data2:0];
}

// True if the event was seen when it came and not only when the waiting was over. Ended modal
// sessions of earlier tests may have left events that woke them.
bool isSeenInTime() {
    const auto deadline = std::chrono::steady_clock::now() + veltrix::test::patience();
    NSDate* const end = [NSDate
        dateWithTimeIntervalSinceNow:std::chrono::duration<double>(veltrix::test::patience())
                                         .count()];
    NSEvent* event = nil;
    do
        event = [NSApp nextEventMatchingMask:NSEventMaskApplicationDefined
                                   untilDate:end
                                      inMode:NSDefaultRunLoopMode
                                     dequeue:YES];
    while (event && [event data1] != kMark);
    return event && std::chrono::steady_clock::now() < deadline;
}

}  // namespace

@interface EventPoster : NSObject
+ (void)post:(id)ignored;
@end

@implementation EventPoster
+ (void)post:(id)ignored {
    [NSApp postEvent:makeEvent() atStart:NO];
}
@end

namespace {

TEST(EventLoop, SeesAnEventPostedByATimer) {
    [EventPoster performSelector:@selector(post:) withObject:nil afterDelay:0.05];
    EXPECT_TRUE(isSeenInTime());
}

TEST(EventLoop, WritesNothingWhenWokenFromAThreadWithoutAPool) {
    const RetainPtr<NSEvent> event = makeEvent();
    ::testing::internal::CaptureStderr();
    std::thread([&event] { [NSApp postEvent:event atStart:NO]; }).join();
    EXPECT_TRUE(isSeenInTime());
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

int timersAdded = 0;
void countTimer(id, SEL, NSTimer*, NSString*) {
    ++timersAdded;
}

// A run loop drops a timer that has fired in another mode only when it runs in that mode itself.
TEST(EventLoop, KeepsNoTimerOfTheEventsThatWokeIt) {
    [NSApp postEvent:makeEvent() atStart:NO];
    EXPECT_TRUE(isSeenInTime());
    const veltrix::test::MethodSwap counting([NSRunLoop class], @selector(addTimer:forMode:),
                                             countTimer);
    for (int i = 0; i < 100; ++i) {
        [NSApp postEvent:makeEvent() atStart:NO];
        EXPECT_TRUE(isSeenInTime());
    }
    EXPECT_EQ(timersAdded, 0);
}

}  // namespace
