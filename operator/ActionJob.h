// One run of an operator script: the record that travels to a worker thread, and the run itself.
// Every string in it is a copy, so nothing of the shell is touched off the main thread.
#pragma once

#include "common/Dispatch.h"
#include "common/Json.h"

#include <array>
#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace veltrix {

// What a script may take before it is asked to end.
inline constexpr std::chrono::milliseconds kActionLimit = std::chrono::seconds(200);

// The longest reply, in bytes, that is parsed.
inline constexpr std::size_t kReplyLimit = 8192;

// The environment variables that reach an operator script.
inline constexpr std::array<std::string_view, 12> kOperatorEnvironment{"PATH",
                                                                       "HOME",
                                                                       "USER",
                                                                       "LOGNAME",
                                                                       "TMPDIR",
                                                                       "LANG",
                                                                       "LC_ALL",
                                                                       "DOCKER_HOST",
                                                                       "DOCKER_CONTEXT",
                                                                       "DOCKER_CONFIG",
                                                                       "DOCKER_TLS_VERIFY",
                                                                       "DOCKER_CERT_PATH"};

struct ActionJob {
    std::string executable;              // the Node runtime, an absolute path
    std::vector<std::string> arguments;  // the script first
    std::optional<std::string> input;    // what the script reads; nothing but the end if absent
};

// {"ok": false, "code": "action_incomplete"}: what every failure to get a usable reply comes to.
[[nodiscard]] Reply incompleteReply();

// Runs the script under the filtered environment, with its standard error discarded, and returns
// its reply. Blocks until the script has ended its output and exited, so it belongs on a worker.
// After kActionLimit the script is asked to end, once; one that ignores that keeps this waiting.
[[nodiscard]] Reply runActionJob(const ActionJob& job, std::vector<std::string> environment,
                                 Dispatcher& dispatcher);

}  // namespace veltrix
