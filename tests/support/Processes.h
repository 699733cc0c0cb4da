// What a test may ask about this process and its children, portably. Any thread.
#pragma once

#include <sys/types.h>

#include <vector>

namespace veltrix::test {

// Every descriptor that is open in this process, ascending.
[[nodiscard]] std::vector<int> openDescriptors();

// Whether this process has a child that nobody has reaped yet, running or not.
[[nodiscard]] bool hasChildren();

// Whether a process of this id exists, a zombie included.
[[nodiscard]] bool processExists(pid_t pid);

}  // namespace veltrix::test
