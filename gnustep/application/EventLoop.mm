// Where GNUstep's event loops wait too long and its modal sessions end too early.
#include "common/RetainPtr.h"
#include "gnustep/runtime/Immortal.h"
#include "gnustep/runtime/MethodWrap.h"
#include "gnustep/runtime/SetUp.h"

#import <AppKit/AppKit.h>

namespace veltrix::gnustep {
namespace {

constexpr unichar kEscape = 0x1b;

constexpr NSTimeInterval kNever = 1e9;  // seconds

RetainPtr<NSTimer> makeWakeUp(NSArray* modes) {
    RetainPtr<NSTimer> timer = [NSTimer timerWithTimeInterval:kNever
                                                       target:NSApp
                                                     selector:@selector(self)
                                                     userInfo:nil
                                                      repeats:YES];
    for (NSString* mode in modes)
        [[NSRunLoop currentRunLoop] addTimer:timer.get() forMode:mode];
    return timer;
}

// An event posted while the run loop fires timers or reads a descriptor would lie there until the
// next one from outside: the loop settles down to wait without looking. Not with a timer due.
void wakeEventLoop() {
    @autoreleasepool {
        NSArray* const modes =
            @[ NSDefaultRunLoopMode, NSModalPanelRunLoopMode, NSEventTrackingRunLoopMode ];
        // A signal to terminate, for one, arrives on a thread of its own.
        if (![NSThread isMainThread]) {
            [NSApp performSelectorOnMainThread:@selector(self)
                                    withObject:nil
                                 waitUntilDone:NO
                                         modes:modes];
            return;
        }
        // One for all times: a timer that has fired in one mode would stay in the others until
        // they are run, which may be never.
        static Immortal<RetainPtr<NSTimer>> wakeUp(makeWakeUp(modes));
        [(*wakeUp).get() setFireDate:[NSDate date]];
    }
}

void (*originalPostEvent)(id, SEL, NSEvent*, BOOL) = nullptr;
void postEvent(id self, SEL command, NSEvent* event, BOOL atStart) {
    originalPostEvent(self, command, event, atStart);
    wakeEventLoop();
}

// Ends the loop by an event that does not go the usual way.
void (*originalStop)(id, SEL, id) = nullptr;
void stop(id self, SEL command, id sender) {
    originalStop(self, command, sender);
    wakeEventLoop();
}

void (*originalTerminate)(id, SEL, id) = nullptr;
void terminate(id self, SEL command, id sender) {
    originalTerminate(self, command, sender);
    wakeEventLoop();
}

// The session looks at its end only after the next event: one is posted, so that a session stopped
// from a timer or from work of the main queue ends at once.
void (*originalStopModalWithCode)(id, SEL, NSInteger) = nullptr;
void stopModalWithCode(id self, SEL command, NSInteger code) {
    originalStopModalWithCode(self, command, code);
    NSEvent* const wakeUp = [NSEvent otherEventWithType:NSEventTypeApplicationDefined
                                               location:NSZeroPoint
                                          modifierFlags:0
                                              timestamp:0
                                           windowNumber:0
                                                context:nil
                                                subtype:0
                                                  data1:0
                                                  data2:0];
    [self postEvent:wakeUp atStart:NO];
}

// Escape dismisses panels and alerts. A plain window that runs modally it would take away without
// asking windowShouldClose:.
void (*originalKeyDown)(id, SEL, NSEvent*) = nullptr;
void keyDown(id self, SEL command, NSEvent* event) {
    NSString* const characters = [event charactersIgnoringModifiers];
    const bool isEscape = [characters length] == 1 && [characters characterAtIndex:0] == kEscape;
    if (!isEscape || [self isKindOfClass:[NSPanel class]])
        originalKeyDown(self, command, event);
}

}  // namespace

void installEventLoopFixes() {
    wrapMethod([NSApplication class], @selector(postEvent:atStart:), postEvent, originalPostEvent);
    wrapMethod([NSApplication class], @selector(stop:), stop, originalStop);
    wrapMethod([NSApplication class], @selector(terminate:), terminate, originalTerminate);
    wrapMethod([NSApplication class], @selector(stopModalWithCode:), stopModalWithCode,
               originalStopModalWithCode);
    wrapMethod([NSWindow class], @selector(keyDown:), keyDown, originalKeyDown);
}

}  // namespace veltrix::gnustep
