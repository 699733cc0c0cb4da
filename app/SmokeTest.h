// The self-test that automated checks start with "--qa-smoke" and a PNG path: what asks for it,
// what it types into the form and what it prints. The rules are here, without a window system; the
// steps that need the window are SmokeTestRun's. Pure; any thread.
#pragma once

#include "app/DesktopSettings.h"

#include <chrono>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace veltrix {

inline constexpr std::chrono::milliseconds kSmokeTestDelay = std::chrono::seconds(1);

// The exit status when no screenshot could be taken or written.
inline constexpr int kNoScreenshotStatus = 2;

// The path for the screenshot, if the process arguments ask for the self-test: exactly the
// program, "--qa-smoke" and the path.
[[nodiscard]] std::optional<std::string> smokeTestOutput(std::span<const std::string> arguments);

// What the form shows during the self-test. The runtime is deliberately absent: it must be refused.
struct SmokeTestFields {
    std::string_view home = "/tmp/veltrix-desktop-qa/home";
    std::string_view storage = "/tmp/veltrix-desktop-qa/recordings";
    std::string_view node = "/bundled/runtime/bin/node";
    std::string_view origin = kOriginPlaceholder;
};

struct SmokeTestFindings {
    bool menuEntries = false;  // both page entries are in the status menu
    bool busy = false;         // an action did start
    bool visibleAfterHide = true;
    bool visibleNow = false;
    std::string statusAfterCommand;  // the status line after "status" was refused
};

// The one line that is printed, line feed included. All facts hold together or the test failed.
[[nodiscard]] std::string_view smokeTestLine(const SmokeTestFindings& findings);

}  // namespace veltrix
