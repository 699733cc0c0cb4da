#include "common/PathChooser.h"

#include "common/Text.h"

#import <AppKit/AppKit.h>

namespace veltrix {

std::optional<std::string> choosePath(Choosable kind) {
    NSOpenPanel* const panel = [NSOpenPanel openPanel];
    [panel setCanChooseFiles:kind == Choosable::files];
    [panel setCanChooseDirectories:kind == Choosable::folders];
    [panel setAllowsMultipleSelection:NO];
    if ([panel runModal] != NSModalResponseOK || [panel URL] == nil) {
        return std::nullopt;
    }
    return toUtf8([[panel URL] path]);
}

}  // namespace veltrix
