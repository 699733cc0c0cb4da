// Which running copy of this program, if any, is asked to come forward in place of this one. Pure;
// any thread.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <optional>
#include <span>

namespace veltrix {

// The index of the first process that is not our own, among all with our bundle identifier in the
// order the system lists them. Two launches in the same instant can each see the other and both
// step back; launching once more then works.
[[nodiscard]] std::optional<std::size_t> otherInstance(pid_t own, std::span<const pid_t> running);

}  // namespace veltrix
