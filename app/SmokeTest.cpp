#include "app/SmokeTest.h"

namespace veltrix {
namespace {

constexpr std::string_view kOption = "--qa-smoke";
constexpr std::string_view kRuntimeRejected = "executable Node";

constexpr std::string_view kSuccess =
    "{\"nativeWindow\":true,\"menuEntries\":true,\"hideRestore\":true,"
    "\"missingRuntimeRejected\":true,\"serviceStarted\":false}\n";
constexpr std::string_view kFailure = "{\"nativeWindow\":false}\n";

}  // namespace

std::optional<std::string> smokeTestOutput(std::span<const std::string> arguments) {
    if (arguments.size() != 3 || arguments[1] != kOption) {
        return std::nullopt;
    }
    return arguments[2];
}

std::string_view smokeTestLine(const SmokeTestFindings& findings) {
    const bool hideRestore = findings.visibleNow && !findings.visibleAfterHide;
    const bool rejected = findings.statusAfterCommand.find(kRuntimeRejected) != std::string::npos;
    return findings.menuEntries && !findings.busy && hideRestore && rejected ? kSuccess : kFailure;
}

}  // namespace veltrix
