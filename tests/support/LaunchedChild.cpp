#include "support/LaunchedChild.h"

#include <gtest/gtest.h>

#include <atomic>
#include <limits>

namespace veltrix::test {

std::string LaunchedChild::finish() {
    input.reset();
    std::string text = drain(output.get(), std::numeric_limits<std::size_t>::max());
    process->waitUntilExit();
    return text;
}

LaunchedChild launchChild(const ResourceFixture& resources, std::string_view steps,
                          const std::vector<std::string>& arguments,
                          const std::vector<std::string>& environment) {
    static std::atomic<int> count = 0;
    const std::string name = "script-" + std::to_string(++count);
    ChildCommand command{resources.node(), {resources.script(name, steps)}, environment};
    command.arguments.insert(command.arguments.end(), arguments.begin(), arguments.end());
    return launchCommand(command);
}

LaunchedChild launchCommand(const ChildCommand& command) {
    std::optional<Pipe> input = makePipe();
    std::optional<Pipe> output = makePipe();
    if (!input || !output) {
        ADD_FAILURE() << "no pipes";
        return {};
    }
    return {ChildProcess::launch(command, input->readEnd.get(), output->writeEnd.get()),
            std::move(input->writeEnd), std::move(output->readEnd)};
}

}  // namespace veltrix::test
