// What a fixture child saw of itself (its step "report"): how it was called and what it inherited.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace veltrix::test {

struct ChildReport {
    std::vector<std::string> arguments;    // its own name first
    std::vector<std::string> environment;  // "NAME=value", in order
    std::vector<int> descriptors;          // open ones, ascending
    std::vector<int> blockedSignals;
    std::vector<int> handledSignals;  // not at their default: ignored, to a fresh program
    pid_t pid = 0;
    pid_t parent = 0;
    pid_t group = 0;
    long errorDevice = -1;  // st_rdev of standard error
    std::string folder;
};

// Waits until the report is there; an empty one, and a failure of the test, if it never is.
[[nodiscard]] ChildReport awaitReport(const std::string& path);

}  // namespace veltrix::test
