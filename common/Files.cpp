#include "common/Files.h"

#include "common/UniqueFd.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace veltrix {

bool fileExists(const std::string& path) {
    return ::access(path.c_str(), F_OK) == 0;
}

bool isExecutableFile(const std::string& path) {
    return ::access(path.c_str(), X_OK) == 0;
}

bool isFolder(const std::string& path) {
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

std::optional<std::string> readFile(const std::string& path, std::size_t limit) {
    // Opening a FIFO without a writer would block for ever; O_NONBLOCK changes nothing for files.
    const UniqueFd file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat info {};
    if (!file || ::fstat(file.get(), &info) != 0 || !S_ISREG(info.st_mode)) {
        return std::nullopt;
    }
    std::string contents(limit + 1, '\0');
    std::size_t length = 0;
    while (length < contents.size()) {
        const ssize_t count =
            ::read(file.get(), contents.data() + length, contents.size() - length);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            return std::nullopt;
        }
        if (count == 0) {
            break;
        }
        length += static_cast<std::size_t>(count);
    }
    if (length > limit) {
        return std::nullopt;
    }
    contents.resize(length);
    return contents;
}

}  // namespace veltrix
