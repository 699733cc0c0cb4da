#include "gnustep/runtime/MethodWrap.h"
#include "gnustep/runtime/SetUp.h"

#import <AppKit/AppKit.h>

#include <cstdlib>
#include <cstring>

namespace {
NSApplicationActivationPolicy currentPolicy = NSApplicationActivationPolicyRegular;
}

@implementation NSApplication (ActivationPolicySupply)

- (NSApplicationActivationPolicy)activationPolicy {
    return currentPolicy;
}

// Decides whether the main menu is shown; there is no Dock to be absent from.
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)policy {
    currentPolicy = policy;
    return YES;
}

@end

namespace veltrix::gnustep {
namespace {

// The main menu of an application without a menu bar is invisible, but its key equivalents work.
void (*originalDisplay)(id, SEL) = nullptr;
void display(id self, SEL command) {
    if (self != [NSApp mainMenu] || currentPolicy == NSApplicationActivationPolicyRegular)
        originalDisplay(self, command);
}

}  // namespace

void installActivationPolicy() {
    wrapMethod([NSMenu class], @selector(display), display, originalDisplay);
}

}  // namespace veltrix::gnustep

@implementation NSFileManager (HomeSupply)

- (NSURL*)homeDirectoryForCurrentUser {
    const char* const home = std::getenv("HOME");
    NSString* const path = home && home[0] == '/'
                               ? [self stringWithFileSystemRepresentation:home
                                                                   length:std::strlen(home)]
                               : NSHomeDirectory();
    return [NSURL fileURLWithPath:path isDirectory:YES];
}

@end
