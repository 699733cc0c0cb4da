// One child process of this program, from launch to reaping. Shared by the job that waits for it
// and the watchdog that may end it: every operation is safe from any thread, and none can ever
// signal a process that is not ours, however quickly the system recycles process ids.
//
// The child gets descriptors 0 and 1 from the caller, the null device as 2 and nothing else, the
// given environment and nothing else, default signal dispositions, an empty signal mask and a
// process group of its own. Its working directory is ours.
//
// Sources: posix_spawn(3), waitid(2), POSIX.1-2017 2.4 (signals); POSIX_SPAWN_CLOEXEC_DEFAULT is
// described in macOS's posix_spawnattr_setflags(3).
#pragma once

#include <sys/types.h>

#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace veltrix {

struct ChildCommand {
    std::string executable;                // a path; never searched for on PATH
    std::vector<std::string> arguments;    // without the program's own name
    std::vector<std::string> environment;  // "NAME=value" entries
};

class ChildProcess {
  public:
    // Starts the command with the two descriptors as its standard input and output; the caller
    // keeps and closes its own copies. Null when the program could not be started, in which case
    // there is nothing to wait for.
    [[nodiscard]] static std::shared_ptr<ChildProcess>
    launch(const ChildCommand& command, int standardInput, int standardOutput);

    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;
    // Dropping the last reference neither ends nor awaits a child that still runs; it only sees
    // to it that no zombie stays when it does exit.
    ~ChildProcess();

    [[nodiscard]] pid_t pid() const { return pid_; }

    // Whether the child has not exited yet. A child reaped by somebody else counts as exited.
    [[nodiscard]] bool isRunning();

    // Asks a running child to end (one SIGTERM, to the child alone). Nothing once it has exited.
    void terminate();

    // Blocks until the child has exited and reaps it. The exit status is nobody's business.
    void waitUntilExit();

  private:
    explicit ChildProcess(pid_t pid) : pid_(pid) {}

    bool hasExited();  // needs state_
    void reap();       // needs waiter_ and state_

    const pid_t pid_;
    // Only the holder of waiter_ may reap, and waitUntilExit holds it while it blocks: so the id
    // cannot be freed under the feet of a thread about to wait for it. state_ is held briefly, by
    // whoever looks at or signals the child, and keeps the id ours meanwhile.
    std::mutex waiter_;
    std::mutex state_;
    bool gone_ = false;  // reaped, by us or by somebody else; guarded by state_
};

}  // namespace veltrix
