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

constexpr char kLineFeed = '\n';

// Appends what is left of a line. True if there may be more of it.
bool takeByteOfLine(int fd, std::string& line) {
    const std::optional<char> byte = readByte(fd);
    if (!byte || *byte == kLineFeed) {
        return false;
    }
    line.push_back(*byte);
    return true;
}

#if defined(__linux__)
// A second pipe into which tee(2) copies what is in the first without taking it, so that a line can
// be taken in one piece once its end has been seen.
class LineTaker {
  public:
    explicit LineTaker(int fd) : fd_(fd), copy_(makePipe()) {}

    // As takeByteOfLine, but all that is there, up to `most` bytes.
    bool takePiece(std::string& line, std::size_t most) {
        const std::string_view seen = look(std::min(most, buffer_.size()));
        if (seen.empty()) {
            return takeByteOfLine(fd_, line);  // no copy to be had, or the end
        }
        const std::size_t length = std::min(seen.find(kLineFeed), seen.size());
        line.append(seen.substr(0, length));
        const bool atLineFeed = length < seen.size();
        return take(length + (atLineFeed ? 1 : 0)) && !atLineFeed;
    }

  private:
    std::string_view look(std::size_t most) {
        ssize_t copied = 0;
        do {
            copied = copy_ ? ::tee(fd_, copy_->writeEnd.get(), most, 0) : 0;
        } while (copied < 0 && errno == EINTR);
        if (copied <= 0 || readSome(copy_->readEnd.get(), buffer_.data(),
                                    static_cast<std::size_t>(copied)) != copied) {
            copy_.reset();
            return {};
        }
        return {buffer_.data(), static_cast<std::size_t>(copied)};
    }

    // What was seen is there, and nobody else reads.
    bool take(std::size_t count) {
        return readSome(fd_, buffer_.data(), count) == static_cast<ssize_t>(count);
    }

    int fd_;
    std::optional<Pipe> copy_;
    std::array<char, 16384> buffer_;
};
#else
// Nothing here can look into a pipe without taking what it sees.
class LineTaker {
  public:
    explicit LineTaker(int fd) : fd_(fd) {}
    bool takePiece(std::string& line, std::size_t) { return takeByteOfLine(fd_, line); }

  private:
    int fd_;
};
#endif

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

std::string readLine(int fd, std::size_t keep) {
    std::string line;
    LineTaker taker(fd);
    while (line.size() < keep && taker.takePiece(line, keep - line.size())) {
    }
    return line;
}

}  // namespace veltrix
