#include "gnustep/runtime/SetUp.h"

#include "gnustep/runtime/Defaults.h"

#import <AppKit/AppKit.h>

#include <objc/runtime.h>

namespace veltrix::gnustep {
namespace {

id (*originalSharedApplication)(id, SEL) = nullptr;

id sharedApplication(id self, SEL command) {
    static bool setUp = false;
    if (setUp)
        return originalSharedApplication(self, command);
    setUp = true;
    @autoreleasepool {
        installLockBreaking();  // before the defaults, which take one
        registerDefaults();
        leaveOutImageMagick();
        installSideTables();
        installLayoutTriggers();
        installStatusStrip();
        installFieldLook();
        installOpenPanelLook();
        installActivationPolicy();
        installHiddenMenus();
        installEventLoopFixes();
        installQuietNotificationCenter();
        const id application = originalSharedApplication(self, command);
        installLook();
        registerRunningApplication();
        return application;
    }
}

// Runs while the program is being loaded, when other files of this library may not have made their
// selectors and categories known yet: hence the names as strings, and nothing but this one hook.
__attribute__((constructor)) void hookIntoSharedApplication() {
    const Method method = class_getClassMethod(static_cast<Class>(objc_getClass("NSApplication")),
                                               sel_registerName("sharedApplication"));
    originalSharedApplication = reinterpret_cast<id (*)(id, SEL)>(
        method_setImplementation(method, reinterpret_cast<IMP>(sharedApplication)));
}

}  // namespace
}  // namespace veltrix::gnustep
