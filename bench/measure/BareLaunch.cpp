#include "measure/BareLaunch.h"

#include "measure/Measure.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <utility>

namespace veltrix::bench {
namespace {

constexpr int kFirstOfOthers = 3;

bool spawn(pid_t* pid, const char* executable, char* const* arguments, char* const* environment,
           int input, int output, bool withAttributes) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input, 0);
    posix_spawn_file_actions_adddup2(&actions, output, 1);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    if (withAttributes) {
        posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_addclosefrom_np(&actions, kFirstOfOthers);
        sigset_t every;
        sigfillset(&every);
        sigdelset(&every, SIGKILL);
        sigdelset(&every, SIGSTOP);
        sigset_t none;
        sigemptyset(&none);
        posix_spawnattr_setsigdefault(&attributes, &every);
        posix_spawnattr_setsigmask(&attributes, &none);
        posix_spawnattr_setpgroup(&attributes, 0);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK |
                                                  POSIX_SPAWN_SETPGROUP);
    }
    const int failure = posix_spawn(pid, executable, &actions, &attributes, arguments, environment);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    return failure == 0;
}

[[noreturn]] void becomeChild(const char* executable, char* const* arguments,
                              char* const* environment, int input, int output) {
    dup2(input, 0);
    dup2(output, 1);
    dup2(open("/dev/null", O_WRONLY), 2);
    close_range(kFirstOfOthers, ~0U, 0);
    setpgid(0, 0);
    for (int number = 1; number < NSIG; ++number) {
        signal(number, SIG_DFL);
    }
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    execve(executable, arguments, environment);
    _exit(127);
}

std::string readToEnd(int fd) {
    std::string text;
    std::array<char, 65536> buffer;
    for (;;) {
        const ssize_t count = read(fd, buffer.data(), buffer.size());
        if (count > 0) {
            text.append(buffer.data(), static_cast<std::size_t>(count));
        } else if (count == 0 || errno != EINTR) {
            return text;
        }
    }
}

}  // namespace

BareLauncher::BareLauncher(std::string executable, std::vector<std::string> arguments)
    : executable_(std::move(executable)), argumentStrings_(std::move(arguments)),
      environmentStrings_(childEnvironment()) {
    argumentStrings_.insert(argumentStrings_.begin(), executable_);
    arguments_ = pointersTo(argumentStrings_);
    environment_ = pointersTo(environmentStrings_);
}

BareLauncher::Child BareLauncher::start(Launch launch) {
    int input[2];
    int output[2];
    if (pipe2(input, O_CLOEXEC) != 0 || pipe2(output, O_CLOEXEC) != 0) {
        giveUp("no pipe");
    }
    Child child{-1, input[1], output[0]};
    if (launch == Launch::forked) {
        child.pid = fork();
        if (child.pid == 0) {
            becomeChild(executable_.c_str(), arguments_.data(), environment_.data(), input[0],
                        output[1]);
        }
    } else if (!spawn(&child.pid, executable_.c_str(), arguments_.data(), environment_.data(),
                      input[0], output[1], launch == Launch::equal)) {
        giveUp("no child");
    }
    close(input[0]);
    close(output[1]);
    return child;
}

bool BareLauncher::run(Launch launch) {
    const Child child = start(launch);
    close(child.input);
    const std::string output = readToEnd(child.output);
    close(child.output);
    int status = 0;
    while (waitpid(child.pid, &status, 0) < 0 && errno == EINTR) {
    }
    return isExpectedReply(output);
}

}  // namespace veltrix::bench
