// What every measuring program of the benches has in common. A script asks it for rounds on its
// standard input, one number a line; in a round each of its ways is taken once, in an order drawn
// anew, so that whatever else the machine does falls on all of them alike. It answers with lines
// "WAY NANOSECONDS" and, when the rounds are over, "done". Main thread.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace veltrix::bench {

struct Way {
    std::string name;
    std::function<bool()> take;  // whether it came to what it should; if not, nothing counts
};

// Serves until the end of input. The exit status of the program.
[[nodiscard]] int serveRounds(std::vector<Way> ways);

// What every child is started with here, the companion's included.
[[nodiscard]] std::vector<std::string> childEnvironment();
[[nodiscard]] std::vector<std::string> childArguments();

// Whether the child has said what it says.
[[nodiscard]] bool isExpectedReply(std::string_view output);

// Null-terminated pointers into the strings, for execve(2).
[[nodiscard]] std::vector<char*> pointersTo(std::vector<std::string>& strings);

// Says what went wrong and ends the program: a measurement that is none must not look like one.
[[noreturn]] void giveUp(std::string_view what);

}  // namespace veltrix::bench
