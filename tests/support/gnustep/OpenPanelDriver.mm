#include "support/gnustep/OpenPanelDriver.h"

#include "common/RetainPtr.h"
#include "support/AppKitDriver.h"

namespace veltrix::test {

bool chooseInOpenPanel(NSWindow* panel, NSString* path) {
    NSBrowser* const browser =
        dynamicCast<NSBrowser>(findView([panel contentView], [](NSView* view) {
            return (bool)[view isKindOfClass:[NSBrowser class]];
        }));
    if (!browser || ![browser setPath:path])
        return false;
    [browser sendAction];
    return pressButtonTitled(panel, @"OK");
}

bool cancelOpenPanel(NSWindow* panel) {
    return pressButtonTitled(panel, @"Cancel");
}

}  // namespace veltrix::test
