// A launch with nothing around it, on the calling thread: what the system itself charges for a
// child. Written against the system's interface alone, not against ours, which is measured by it.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace veltrix::bench {

enum class Launch {
    equal,    // posix_spawn with all that the companion promises a child
    minimal,  // posix_spawn with two pipes and nothing else
    forked,   // fork and exec, for contrast; otherwise as `equal`
};

class BareLauncher {
  public:
    BareLauncher(std::string executable, std::vector<std::string> arguments);
    BareLauncher(const BareLauncher&) = delete;
    BareLauncher& operator=(const BareLauncher&) = delete;
    ~BareLauncher() = default;

    struct Child {
        pid_t pid = -1;
        int input = -1;   // we write
        int output = -1;  // we read
    };
    // With its pipes; the child's ends are closed.
    [[nodiscard]] Child start(Launch launch);

    // Starts, ends its input, reads its output to the end, waits, and says whether it was the
    // expected reply.
    [[nodiscard]] bool run(Launch launch);

  private:
    std::string executable_;
    std::vector<std::string> argumentStrings_;
    std::vector<std::string> environmentStrings_;
    std::vector<char*> arguments_;
    std::vector<char*> environment_;
};

}  // namespace veltrix::bench
