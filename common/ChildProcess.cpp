#include "common/ChildProcess.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>

#include <cerrno>
#include <system_error>
#include <thread>

namespace veltrix {
namespace {

constexpr int kStandardInput = 0;
constexpr int kStandardOutput = 1;
constexpr int kStandardError = 2;

// The streams of the child. Pipe ends lie above descriptor 2 (see makePipe), so each dup2 really
// copies, and the copy is not close-on-exec.
class FileActions {
  public:
    FileActions() { valid_ = ::posix_spawn_file_actions_init(&actions_) == 0; }
    ~FileActions() {
        if (valid_) {
            ::posix_spawn_file_actions_destroy(&actions_);
        }
    }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;

    bool wire(int standardInput, int standardOutput) {
        return valid_ &&
               ::posix_spawn_file_actions_adddup2(&actions_, standardInput, kStandardInput) == 0 &&
               ::posix_spawn_file_actions_adddup2(&actions_, standardOutput, kStandardOutput) ==
                   0 &&
               ::posix_spawn_file_actions_addopen(&actions_, kStandardError, "/dev/null", O_WRONLY,
                                                  0) == 0 &&
               closeEverythingElse();
    }

    [[nodiscard]] const posix_spawn_file_actions_t* get() const { return &actions_; }

  private:
    bool closeEverythingElse() {
#if defined(__linux__)
        return ::posix_spawn_file_actions_addclosefrom_np(&actions_, kStandardError + 1) == 0;
#else
        return true;  // POSIX_SPAWN_CLOEXEC_DEFAULT, below
#endif
    }

    posix_spawn_file_actions_t actions_;
    bool valid_ = false;
};

class SpawnAttributes {
  public:
    SpawnAttributes() { valid_ = ::posix_spawnattr_init(&attributes_) == 0; }
    ~SpawnAttributes() {
        if (valid_) {
            ::posix_spawnattr_destroy(&attributes_);
        }
    }
    SpawnAttributes(const SpawnAttributes&) = delete;
    SpawnAttributes& operator=(const SpawnAttributes&) = delete;

    // We ignore SIGPIPE and a test runner may block or ignore anything; a child that inherited
    // that could not be asked to end.
    bool startFresh() {
        sigset_t every;  // the calls on sets are macros on macOS and cannot be qualified
        sigfillset(&every);
        sigdelset(&every, SIGKILL);
        sigdelset(&every, SIGSTOP);
        sigset_t none;
        sigemptyset(&none);
        int flags = POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETPGROUP;
#if defined(__APPLE__)
        flags |= POSIX_SPAWN_CLOEXEC_DEFAULT;
#endif
        return valid_ && ::posix_spawnattr_setsigdefault(&attributes_, &every) == 0 &&
               ::posix_spawnattr_setsigmask(&attributes_, &none) == 0 &&
               ::posix_spawnattr_setpgroup(&attributes_, 0) == 0 &&
               ::posix_spawnattr_setflags(&attributes_, static_cast<short>(flags)) == 0;
    }

    [[nodiscard]] const posix_spawnattr_t* get() const {
        return &attributes_;
    }

  private:
    posix_spawnattr_t attributes_;
    bool valid_ = false;
};

// A null-terminated vector of C strings that borrows from its arguments (execve(2)).
std::vector<char*> borrowed(const std::string* first, const std::vector<std::string>& rest) {
    std::vector<char*> pointers;
    pointers.reserve(rest.size() + 2);
    if (first != nullptr) {
        pointers.push_back(const_cast<char*>(first->c_str()));
    }
    for (const std::string& entry : rest) {
        pointers.push_back(const_cast<char*>(entry.c_str()));
    }
    pointers.push_back(nullptr);
    return pointers;
}

// waitid(2) for one child that leaves it waitable. True when it has exited or is not ours to wait
// for any more (ECHILD); `lost` tells the second case.
bool exitSeen(pid_t pid, int options, bool& lost) {
    siginfo_t info{};
    int result = 0;
    do {
        info.si_pid = 0;
        result = ::waitid(P_PID, static_cast<id_t>(pid), &info, WEXITED | WNOWAIT | options);
    } while (result != 0 && errno == EINTR);
    lost = result != 0;
    return lost || info.si_pid == pid;
}

void reapBlocking(pid_t pid) {
    int status = 0;
    while (::waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
}

}  // namespace

std::shared_ptr<ChildProcess> ChildProcess::launch(const ChildCommand& command, int standardInput,
                                                   int standardOutput) {
    FileActions actions;
    SpawnAttributes attributes;
    if (!actions.wire(standardInput, standardOutput) || !attributes.startFresh()) {
        return nullptr;
    }
    const std::vector<char*> arguments = borrowed(&command.executable, command.arguments);
    const std::vector<char*> environment = borrowed(nullptr, command.environment);
    pid_t pid = 0;
    if (::posix_spawn(&pid, command.executable.c_str(), actions.get(), attributes.get(),
                      arguments.data(), environment.data()) != 0) {
        return nullptr;
    }
    return std::shared_ptr<ChildProcess>(new ChildProcess(pid));
}

ChildProcess::~ChildProcess() {
    // Nobody else holds a reference, so no lock is needed, and the id stays ours until reaped.
    if (!isRunning()) {
        return;
    }
    try {
        std::thread(reapBlocking, pid_).detach();
    } catch (const std::system_error&) {
        // No thread to be had: the zombie goes when this program does.
    }
}

bool ChildProcess::hasExited() {
    if (gone_) {
        return true;
    }
    bool lost = false;
    const bool exited = exitSeen(pid_, WNOHANG, lost);
    gone_ = lost;
    return exited;
}

void ChildProcess::reap() {
    if (!gone_) {
        reapBlocking(pid_);
        gone_ = true;
    }
}

bool ChildProcess::isRunning() {
    const std::unique_lock waiter(waiter_, std::try_to_lock);
    const std::lock_guard state(state_);
    if (!hasExited()) {
        return true;
    }
    if (waiter.owns_lock()) {
        reap();
    }
    return false;
}

void ChildProcess::terminate() {
    const std::lock_guard state(state_);
    if (!hasExited()) {
        ::kill(pid_, SIGTERM);
    }
}

void ChildProcess::waitUntilExit() {
    const std::lock_guard waiter(waiter_);
    {
        const std::lock_guard state(state_);
        if (gone_) {
            return;
        }
    }
    bool lost = false;
    exitSeen(pid_, 0, lost);
    const std::lock_guard state(state_);
    gone_ = gone_ || lost;
    reap();
}

}  // namespace veltrix
