#include "gnustep/runtime/MethodWrap.h"
#include "gnustep/runtime/SetUp.h"

#import <AppKit/AppKit.h>

namespace veltrix::gnustep {
namespace {

// To know what to draw again, the library measures the whole menu for every item that is added or
// changed. While the menu cannot be seen, all of it may as well be drawn when it can.
void (*originalSetNeedsDisplay)(id, SEL, NSInteger) = nullptr;
void setNeedsDisplayForItem(id self, SEL command, NSInteger index) {
    if ([[self window] isVisible])
        originalSetNeedsDisplay(self, command, index);
    else
        [self setNeedsDisplay:YES];
}

}  // namespace

void installHiddenMenus() {
    wrapMethod([NSMenuView class], @selector(setNeedsDisplayForItemAtIndex:),
               setNeedsDisplayForItem, originalSetNeedsDisplay);
}

}  // namespace veltrix::gnustep
