// Where the bundle keeps its scripts and runtime. Any thread.
#pragma once

#include <string>

namespace veltrix {

// Paths inside the resource folder, each the one place where it is written.
inline constexpr const char* kBundledRuntime = "bundle/runtime/bin/node";

// The main bundle's resource folder, an absolute path without a trailing slash. A bundle without
// one is a programming error and stops the process.
[[nodiscard]] std::string resourceFolder();

// The folder and a relative path under it.
[[nodiscard]] inline std::string resourcePath(const std::string& folder, const char* relative) {
    return folder + "/" + relative;
}

}  // namespace veltrix
