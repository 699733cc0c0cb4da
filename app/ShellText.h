// What the shell itself says, apart from commands and settings. Constants; any thread.
#pragma once

#include <string_view>

namespace veltrix {

inline constexpr std::string_view kProductName = "Veltrix Home DVR";
inline constexpr std::string_view kStatusItemSymbol = "externaldrive";
inline constexpr std::string_view kStatusAtLaunch = "Service status unknown";
inline constexpr std::string_view kWaitBeforeQuitting =
    "Wait for the current action before quitting.";

}  // namespace veltrix
