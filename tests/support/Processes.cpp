#include "support/Processes.h"

#include "common/Dispatch.h"

#include <dirent.h>
#include <signal.h>
#include <sys/wait.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>

namespace veltrix::test {

std::vector<int> openDescriptors() {
    static_cast<void>(systemDispatcher());  // whatever it keeps open for good is open from here on
    std::vector<int> open;
    DIR* const folder = ::opendir("/dev/fd");
    if (folder == nullptr) {
        return open;
    }
    while (const dirent* entry = ::readdir(folder)) {
        const int fd = std::atoi(entry->d_name);
        if (entry->d_name[0] != '.' && fd != ::dirfd(folder)) {
            open.push_back(fd);
        }
    }
    ::closedir(folder);
    std::sort(open.begin(), open.end());
    return open;
}

bool hasChildren() {
    siginfo_t info{};
    return ::waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) == 0 || errno != ECHILD;
}

bool processExists(pid_t pid) {
    return ::kill(pid, 0) == 0 || errno == EPERM;
}

}  // namespace veltrix::test
