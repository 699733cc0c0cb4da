#include "Report.h"

#include <dirent.h>
#include <limits.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <string_view>

extern "C" char** environ;

namespace child {
namespace {

class Records {
  public:
    void add(std::string_view name, std::string_view bytes) {
        text_.append(name).append(" ").append(std::to_string(bytes.size()));
        text_.append("\n").append(bytes).append("\n");
    }
    void add(std::string_view name, long value) { add(name, std::to_string(value)); }
    std::string take() { return std::move(text_); }

  private:
    std::string text_;
};

void addDescriptors(Records& records) {
    DIR* const folder = ::opendir("/dev/fd");
    if (folder == nullptr) {
        return;
    }
    while (const dirent* entry = ::readdir(folder)) {
        const int fd = std::atoi(entry->d_name);
        if (entry->d_name[0] != '.' && fd != ::dirfd(folder)) {
            records.add("descriptor", fd);
        }
    }
    ::closedir(folder);
}

void addSignals(Records& records) {
    sigset_t blocked;
    sigemptyset(&blocked);
    ::sigprocmask(SIG_SETMASK, nullptr, &blocked);
    for (int number = 1; number < NSIG; ++number) {
        struct sigaction action {};
        if (::sigaction(number, nullptr, &action) == 0 && action.sa_handler != SIG_DFL) {
            records.add("handled", number);
        }
        if (sigismember(&blocked, number) == 1) {
            records.add("blocked", number);
        }
    }
}

}  // namespace

std::string report(int argumentCount, char** arguments) {
    Records records;
    for (int i = 0; i < argumentCount; ++i) {
        records.add("argument", arguments[i]);
    }
    for (char** variable = environ; *variable != nullptr; ++variable) {
        records.add("variable", *variable);
    }
    addDescriptors(records);
    addSignals(records);
    records.add("pid", ::getpid());
    records.add("parent", ::getppid());
    records.add("group", ::getpgrp());
    struct stat errors {};
    if (::fstat(STDERR_FILENO, &errors) == 0) {
        records.add("errors", static_cast<long>(errors.st_rdev));
    }
    char folder[PATH_MAX] = "";
    if (::getcwd(folder, sizeof folder) != nullptr) {
        records.add("folder", folder);
    }
    return records.take();
}

}  // namespace child
