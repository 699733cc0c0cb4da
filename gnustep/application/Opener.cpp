#include "gnustep/application/Opener.h"

#include <cerrno>
#include <csignal>
#include <thread>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace veltrix::gnustep {
namespace {

class SpawnAttributes {
  public:
    SpawnAttributes() {
        posix_spawnattr_init(&attributes_);
        sigset_t everything;
        sigset_t nothing;
        sigfillset(&everything);
        sigemptyset(&nothing);
        posix_spawnattr_setsigdefault(&attributes_, &everything);
        posix_spawnattr_setsigmask(&attributes_, &nothing);
        // A session of its own: what it starts outlives us.
        posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK |
                                                   POSIX_SPAWN_SETSID);
    }
    ~SpawnAttributes() { posix_spawnattr_destroy(&attributes_); }
    SpawnAttributes(const SpawnAttributes&) = delete;
    SpawnAttributes& operator=(const SpawnAttributes&) = delete;

    [[nodiscard]] const posix_spawnattr_t* get() const { return &attributes_; }

  private:
    posix_spawnattr_t attributes_;
};

class FileActions {
  public:
    FileActions() {
        posix_spawn_file_actions_init(&actions_);
        for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
            posix_spawn_file_actions_addopen(&actions_, stream, "/dev/null", O_RDWR, 0);
        posix_spawn_file_actions_addclosefrom_np(&actions_, STDERR_FILENO + 1);
    }
    ~FileActions() { posix_spawn_file_actions_destroy(&actions_); }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;

    [[nodiscard]] const posix_spawn_file_actions_t* get() const { return &actions_; }

  private:
    posix_spawn_file_actions_t actions_;
};

// On a thread that takes no signals, as handlers of the program expect its main thread.
void reapLater(pid_t child) {
    sigset_t everything;
    sigset_t before;
    sigfillset(&everything);
    pthread_sigmask(SIG_SETMASK, &everything, &before);
    std::thread([child] {
        while (waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
        }
    }).detach();
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

}  // namespace

bool openWithDesktop(const std::string& target) {
    const SpawnAttributes attributes;
    const FileActions actions;
    std::string program = "xdg-open";
    std::string argument = target;
    char* const arguments[] = {program.data(), argument.data(), nullptr};
    pid_t child = 0;
    if (posix_spawnp(&child, program.c_str(), actions.get(), attributes.get(), arguments,
                     environ) != 0)
        return false;
    reapLater(child);
    return true;
}

}  // namespace veltrix::gnustep
