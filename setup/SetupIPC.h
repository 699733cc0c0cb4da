// The channel to the first-run process: a Node child that is started by the first request, lives
// across many, and is started anew after it has gone. One JSON line out, one JSON line back, one
// at a time. Owned by a setup window; called on the main thread, works on a serial queue of its
// own and answers on the main thread. Work that is under way keeps the channel alive.
//
// No failure leaves the channel but as the failure reply, and nothing is retried. A deadline asks
// the process to end, once, and nothing stronger follows: a process that ignores that keeps its
// request, and everything behind it, waiting.
#pragma once

#include "common/ChildProcess.h"
#include "common/Dispatch.h"
#include "common/Pipe.h"
#include "setup/SetupChannel.h"

#include <array>
#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace veltrix {

inline constexpr const char* kSetupQueueLabel = "veltrix.desktop.setup";
inline constexpr const char* kFirstRunScript = "desktop/first-run.mjs";

// How long a request may take before the process is asked to end, and how long closing may.
inline constexpr std::chrono::milliseconds kRequestLimit = std::chrono::seconds(20);
inline constexpr std::chrono::milliseconds kPasswordRequestLimit = std::chrono::seconds(60);
inline constexpr std::chrono::milliseconds kCloseLimit = std::chrono::seconds(5);

// The longest reply line, in bytes, without its line feed.
inline constexpr std::size_t kReplyLineLimit = 8192;

// The environment variables that reach the first-run process.
inline constexpr std::array<std::string_view, 7> kSetupEnvironment{
    "PATH", "HOME", "USER", "LOGNAME", "TMPDIR", "LANG", "LC_ALL"};

// {"ok": false, "code": "setup_failed"}
[[nodiscard]] Reply setupFailureReply();

// What the channel needs of the world. The functions are called on its queue.
struct SetupServices {
    Dispatcher& dispatcher;
    std::function<std::string()> resourceFolder;
    std::function<std::vector<std::string>()> environment;
};

class SetupIPC final : public SetupChannel, public std::enable_shared_from_this<SetupIPC> {
  public:
    // Starts nothing. `executable` is the Node runtime, `home` the installation folder.
    [[nodiscard]] static std::shared_ptr<SetupIPC> make(std::string executable, std::string home,
                                                        SetupServices services);

    void request(std::string action, Json::Object values,
                 std::function<void(const Reply&)> completion) override;
    void close(std::function<void()> completion) override;

  private:
    SetupIPC(std::string executable, std::string home, SetupServices services);

    // On the queue:
    [[nodiscard]] Reply answer(const std::string& action, Json::Object values);
    [[nodiscard]] bool ensureProcess();
    [[nodiscard]] std::shared_ptr<DelayedWork> armDeadline(std::chrono::milliseconds limit);
    [[nodiscard]] std::optional<Reply> exchange(const std::string& action, Json::Object values);
    [[nodiscard]] std::optional<Reply> readReply();
    void shutDown();

    const std::string executable_;
    const std::string home_;
    const SetupServices services_;
    const std::shared_ptr<SerialQueue> queue_;

    // Touched by jobs on the queue alone. A failed launch replaces the pipes but not the process.
    std::shared_ptr<ChildProcess> process_;
    Pipe input_;
    Pipe output_;
};

}  // namespace veltrix
