#include "support/OpenPanel.h"

#include "common/RetainPtr.h"

namespace veltrix::test {

// The panel may be drawn by another process: it is told where to be instead of being clicked.
bool chooseInOpenPanel(NSWindow* panel, NSString* path) {
    NSOpenPanel* const open = dynamicCast<NSOpenPanel>(panel);
    BOOL isFolder = NO;
    if (open == nil ||
        ![[NSFileManager defaultManager] fileExistsAtPath:path isDirectory:&isFolder] ||
        (isFolder ? ![open canChooseDirectories] : ![open canChooseFiles])) {
        return false;
    }
    [open setDirectoryURL:[NSURL fileURLWithPath:path]];
    [open ok:nil];
    return true;
}

bool cancelOpenPanel(NSWindow* panel) {
    [panel cancelOperation:nil];
    return true;
}

}  // namespace veltrix::test
