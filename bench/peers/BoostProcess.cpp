// Boost.Process with its pipe streams.
#include "measure/Measure.h"

#include <boost/process.hpp>

#include <iterator>

using namespace veltrix::bench;
namespace process = boost::process;

int main(int, char** arguments) {
    const std::string child = arguments[1];
    const std::vector<std::string> childList = childArguments();
    process::environment environment;
    for (const std::string& entry : childEnvironment()) {
        const std::size_t end = entry.find('=');
        environment[entry.substr(0, end)] = entry.substr(end + 1);
    }
    return serveRounds({{"peer", [&] {
                             process::opstream input;
                             process::ipstream output;
                             process::child running(child, process::args = childList, environment,
                                                    process::std_in<input, process::std_out> output,
                                                    process::std_err > process::null);
                             input.pipe().close();
                             const std::string text{std::istreambuf_iterator<char>(output), {}};
                             running.wait();
                             return isExpectedReply(text);
                         }}});
}
