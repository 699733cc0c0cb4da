// GNUstep lets all programs of a user talk through a daemon and waits for its answers: a program
// whose main thread is busy, or stopped in a debugger, holds up the launching and quitting of all
// others. Nothing here needs to be told to other programs, so a centre that keeps everything to
// itself takes the place of the one that the daemon serves. One thing it lets through: the
// pasteboard waits to be told that its server has started.
#include "gnustep/runtime/MethodWrap.h"
#include "gnustep/runtime/SetUp.h"

#import <Foundation/Foundation.h>

#include <objc/runtime.h>

namespace veltrix::gnustep {
namespace {

id (*originalCenterForType)(id, SEL, NSString*) = nullptr;

id daemonsCenter() {
    return originalCenterForType([NSDistributedNotificationCenter class],
                                 @selector(notificationCenterForType:),
                                 NSLocalNotificationCenterType);
}

bool isServerStart(NSString* name) {
    return [name hasPrefix:@"GSStartup-"];
}

}  // namespace
}  // namespace veltrix::gnustep

@interface VeltrixQuietNotificationCenter : NSDistributedNotificationCenter
@end

@implementation VeltrixQuietNotificationCenter

- (void)addObserver:(id)observer
              selector:(SEL)selector
                  name:(NSString*)name
                object:(NSString*)object
    suspensionBehavior:(NSNotificationSuspensionBehavior)behavior {
    if (veltrix::gnustep::isServerStart(name))
        [veltrix::gnustep::daemonsCenter() addObserver:observer
                                              selector:selector
                                                  name:name
                                                object:object
                                    suspensionBehavior:behavior];
}

- (void)removeObserver:(id)observer name:(NSString*)name object:(NSString*)object {
    if (veltrix::gnustep::isServerStart(name))
        [veltrix::gnustep::daemonsCenter() removeObserver:observer name:name object:object];
}

- (void)postNotificationName:(NSString*)name
                      object:(NSString*)object
                    userInfo:(NSDictionary*)userInfo
          deliverImmediately:(BOOL)immediately {
    (void)name;
    (void)object;
    (void)userInfo;
    (void)immediately;
}

- (void)setSuspended:(BOOL)suspended {
    (void)suspended;
}

@end

namespace veltrix::gnustep {
namespace {

// The class refuses +alloc. What it would initialise serves the daemon only.
id centerForType(id self, SEL command, NSString* type) {
    (void)self;
    (void)command;
    (void)type;
    static const id only = NSAllocateObject([VeltrixQuietNotificationCenter class], 0, nullptr);
    return only;
}

}  // namespace

void installQuietNotificationCenter() {
    wrapMethod(object_getClass([NSDistributedNotificationCenter class]),
               @selector(notificationCenterForType:), centerForType, originalCenterForType);
}

}  // namespace veltrix::gnustep
