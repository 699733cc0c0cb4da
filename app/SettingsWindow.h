// The settings window: navigation buttons, the form, action buttons and the status line. Built once
// at launch, then only hidden and shown. Main thread only.
#pragma once

#include "common/RetainPtr.h"

#import <AppKit/AppKit.h>

#include <vector>

namespace veltrix {

// Owned by the application; the window only arranges them.
struct SettingsFields {
    NSTextField* home;
    NSTextField* node;
    NSTextField* storage;
    NSTextField* origin;
    NSTextField* retention;
    NSTextField* status;
};

struct SettingsWindow {
    RetainPtr<NSWindow> window;
    std::vector<RetainPtr<NSControl>> controls;  // all that is locked while an action runs
};

// `target` answers to buttonCommand: and choose:. The window is centred but not shown.
[[nodiscard]] SettingsWindow makeSettingsWindow(const SettingsFields& fields, id target);

}  // namespace veltrix
