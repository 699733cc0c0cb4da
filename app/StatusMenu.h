// The status item's menu: nine commands, then "Settings..." and "Quit Desktop App". Built once at
// launch; main thread only.
#pragma once

#include "common/RetainPtr.h"

#import <AppKit/AppKit.h>

#include <vector>

namespace veltrix {

struct StatusMenu {
    RetainPtr<NSMenu> menu;
    std::vector<RetainPtr<NSMenuItem>> commandItems;  // the nine, in order
};

// `target` answers to command:, showSettings and quitApp.
[[nodiscard]] StatusMenu makeStatusMenu(id target);

}  // namespace veltrix
