// The one rule for paths that a person types or a script reports. Pure; any thread.
#pragma once

#include <string_view>

namespace veltrix {

// True when the path (UTF-8) is absolute, holds no double quote and no ASCII control character
// (below U+0020, or U+007F). It need not exist. "Absolute" is the platform's own test, NSString's
// isAbsolutePath, which accepts a leading "~" as well as "/"; nothing ever expands the "~".
[[nodiscard]] bool validPath(std::string_view path);

}  // namespace veltrix
