// Owns one POSIX file descriptor and closes it. A value type that moves and never copies; any
// thread may use it, one at a time. -1 means "none".
#pragma once

#include <unistd.h>

#include <utility>

namespace veltrix {

class UniqueFd {
  public:
    UniqueFd() = default;
    explicit UniqueFd(int fd) : fd_(fd) {}
    UniqueFd(UniqueFd&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    UniqueFd& operator=(UniqueFd&& other) noexcept {
        if (this != &other) {
            reset();
            fd_ = std::exchange(other.fd_, -1);
        }
        return *this;
    }
    UniqueFd(const UniqueFd&) = delete;
    UniqueFd& operator=(const UniqueFd&) = delete;
    ~UniqueFd() { reset(); }

    [[nodiscard]] int get() const { return fd_; }
    explicit operator bool() const { return fd_ >= 0; }

    // close(2) is not repeated on EINTR: Linux has closed the descriptor by then, and a second
    // call could close somebody else's.
    void reset() {
        if (fd_ >= 0) {
            ::close(std::exchange(fd_, -1));
        }
    }

  private:
    int fd_ = -1;
};

}  // namespace veltrix
