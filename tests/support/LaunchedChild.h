// A fixture child launched without anything around it: its process and our ends of its pipes. The
// thread that launches it.
#pragma once

#include "common/ChildProcess.h"
#include "common/Pipe.h"
#include "support/ResourceFixture.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace veltrix::test {

struct LaunchedChild {
    std::shared_ptr<ChildProcess> process;  // null if the launch failed
    UniqueFd input;
    UniqueFd output;

    // Waits for the end of its output, then for its exit, and returns what it printed.
    [[nodiscard]] std::string finish();
};

// `steps` is a script in the language of tests/child/Child.cpp.
[[nodiscard]] LaunchedChild launchChild(const ResourceFixture& resources, std::string_view steps,
                                        const std::vector<std::string>& arguments = {},
                                        const std::vector<std::string>& environment = {});

// The same for any command.
[[nodiscard]] LaunchedChild launchCommand(const ChildCommand& command);

}  // namespace veltrix::test
