#include "endurance/Usage.h"

#include "support/Processes.h"

#include <fstream>
#include <string>

namespace veltrix::test {

// /proc/self/status, proc(5).
Usage usage() {
    constexpr std::size_t kKilobyte = 1024;
    Usage now;
    now.descriptors = openDescriptors();
    std::ifstream status("/proc/self/status");
    for (std::string name; status >> name;) {
        if (name == "Threads:") {
            status >> now.threads;
        } else if (name == "VmRSS:") {
            status >> now.memory;
            now.memory *= kKilobyte;
        }
    }
    return now;
}

}  // namespace veltrix::test
