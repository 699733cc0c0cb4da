// What this process holds of the system at a moment (Usage_*.cpp). Any thread.
#pragma once

#include <cstddef>
#include <vector>

namespace veltrix::test {

struct Usage {
    std::vector<int> descriptors;
    std::size_t threads = 0;
    std::size_t memory = 0;  // resident, in bytes
};

[[nodiscard]] Usage usage();

}  // namespace veltrix::test
