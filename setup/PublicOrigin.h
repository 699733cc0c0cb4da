// The recorder's public address as its installation has it configured. Blocking file read of a
// small file; called on the main thread when the setup window is built.
#pragma once

#include <cstddef>
#include <string>

namespace veltrix {

// A larger settings file is not looked at.
inline constexpr std::size_t kSettingsFileLimit = 65536;

// The string "DVR_PUBLIC_ORIGIN" of the installation's settings, exactly as stored; empty if
// there is none or the file cannot be read, is too large or is not a JSON object.
[[nodiscard]] std::string publicOrigin(const std::string& home);

}  // namespace veltrix
