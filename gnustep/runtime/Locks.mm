// Locks of GNUstep's that a crash has left behind. A lock is a folder, made by whoever takes it,
// and nothing says whether its maker lives. GNUstep waits for one 20 seconds before the user
// defaults are read, with no window yet, and for the list of running programs at every launch.
#include "gnustep/runtime/MethodWrap.h"
#include "gnustep/runtime/SetUp.h"

#import <Foundation/Foundation.h>

namespace veltrix::gnustep {
namespace {

// Seconds. Locks are held for as long as it takes to write a small file. Breaking one whose holder
// is only slow does no harm: these files are replaced whole, and the defaults of each program have
// a file of their own.
constexpr NSTimeInterval kLongestHeld = 2;

BOOL (*originalTryLock)(id, SEL) = nullptr;
BOOL tryLock(id self, SEL command) {
    if (originalTryLock(self, command))
        return YES;
    NSDate* const taken = [self lockDate];
    if (taken == nil || [taken timeIntervalSinceNow] > -kLongestHeld)
        return NO;
    @try {
        [self breakLock];
    } @catch (NSException*) {
        return NO;  // somebody else's folder
    }
    return originalTryLock(self, command);
}

}  // namespace

void installLockBreaking() {
    wrapMethod([NSDistributedLock class], @selector(tryLock), tryLock, originalTryLock);
}

}  // namespace veltrix::gnustep
