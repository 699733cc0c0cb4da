// Everything the application needs of the world around its windows, so that a test can put its own
// in place. Made once at entry, then owned by the application.
#pragma once

#include "app/DesktopSettings.h"
#include "operator/Operator.h"

#include <memory>
#include <string>
#include <vector>

namespace veltrix {

struct DesktopEnvironment {
    std::shared_ptr<SettingsStore> settings;
    std::string userHome;                // the current user's home folder
    std::vector<std::string> arguments;  // of the process, the program's own path first
    OperatorServices services;
};

// The user defaults, the process's arguments and environment, the system's queues.
[[nodiscard]] DesktopEnvironment systemEnvironment();

}  // namespace veltrix
