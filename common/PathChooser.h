// The open panel behind every "Choose..." button. Main thread only; modal, so it is called from
// events alone.
#pragma once

#include <optional>
#include <string>

namespace veltrix {

enum class Choosable { files, folders };

// Lets the person pick one file, or one folder. Nothing when they cancel.
[[nodiscard]] std::optional<std::string> choosePath(Choosable kind);

}  // namespace veltrix
