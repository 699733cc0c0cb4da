#include "common/Pipe.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>

namespace veltrix {
namespace {

constexpr int kFirstOrdinaryDescriptor = 3;

// Linux makes the pair close-on-exec in one step. macOS has no pipe2, but every child there is
// spawned close-by-default, so the gap between pipe and fcntl leaks nothing.
bool openPair(int (&ends)[2]) {
#if defined(__linux__)
    return ::pipe2(ends, O_CLOEXEC) == 0;
#else
    if (::pipe(ends) != 0) {
        return false;
    }
    ::fcntl(ends[0], F_SETFD, FD_CLOEXEC);
    ::fcntl(ends[1], F_SETFD, FD_CLOEXEC);
    return true;
#endif
}

UniqueFd aboveStandardStreams(UniqueFd fd) {
    if (fd.get() >= kFirstOrdinaryDescriptor) {
        return fd;
    }
    return UniqueFd(::fcntl(fd.get(), F_DUPFD_CLOEXEC, kFirstOrdinaryDescriptor));
}

ssize_t readSome(int fd, char* buffer, std::size_t size) {
    ssize_t count = 0;
    do {
        count = ::read(fd, buffer, size);
    } while (count < 0 && errno == EINTR);
    return count;
}

}  // namespace

std::optional<Pipe> makePipe() {
    int ends[2] = {-1, -1};
    if (!openPair(ends)) {
        return std::nullopt;
    }
    Pipe pipe{aboveStandardStreams(UniqueFd(ends[0])), aboveStandardStreams(UniqueFd(ends[1]))};
    if (!pipe.readEnd || !pipe.writeEnd) {
        return std::nullopt;
    }
    return pipe;
}

void ignoreBrokenPipes() {
    std::signal(SIGPIPE, SIG_IGN);
}

bool writeAll(int fd, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(fd, bytes.data(), bytes.size());
        if (count > 0) {
            bytes.remove_prefix(static_cast<std::size_t>(count));
        } else if (count < 0 && errno != EINTR) {
            return false;
        }
    }
    return true;
}

std::string drain(int fd, std::size_t keep) {
    std::string kept;
    std::array<char, 65536> buffer;  // a whole Linux pipe per call
    for (;;) {
        const ssize_t count = readSome(fd, buffer.data(), buffer.size());
        if (count <= 0) {
            return kept;
        }
        kept.append(buffer.data(), std::min(static_cast<std::size_t>(count), keep - kept.size()));
    }
}

std::optional<char> readByte(int fd) {
    char byte = 0;
    if (readSome(fd, &byte, 1) != 1) {
        return std::nullopt;
    }
    return byte;
}

}  // namespace veltrix
