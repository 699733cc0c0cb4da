#include "Streams.h"

#include <fcntl.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <vector>

namespace child {
namespace {

constexpr int kPrivate = 0600;

void writeTo(const std::string& path, int flags, std::string_view contents) {
    const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | flags, kPrivate);
    if (fd >= 0) {
        writeAll(fd, contents);
        ::close(fd);
    }
}

// One read that brings something: bytes, or 0 at the end of input.
std::size_t readSome(char* buffer, std::size_t size) {
    for (;;) {
        const ssize_t count = ::read(STDIN_FILENO, buffer, size);
        if (count >= 0) {
            return static_cast<std::size_t>(count);
        }
        if (errno == EAGAIN) {
            nap(200);
        } else if (errno != EINTR) {
            return 0;
        }
    }
}

int hexValue(char digit) {
    const std::string_view digits = "0123456789abcdef";
    return static_cast<int>(digits.find(digit));
}

}  // namespace

bool writeAll(int fd, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(fd, bytes.data(), bytes.size());
        if (count >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(count));
        } else if (errno == EAGAIN) {
            nap(200);
        } else if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

std::optional<std::string> readLine() {
    std::string line;
    for (char byte = 0; readSome(&byte, 1) == 1;) {
        if (byte == '\n') {
            return line;
        }
        line.push_back(byte);
    }
    return std::nullopt;
}

void readBytes(unsigned long long count) {
    std::vector<char> buffer(4096);
    while (count > 0) {
        const auto size = std::min<unsigned long long>(count, buffer.size());
        const std::size_t got = readSome(buffer.data(), size);
        if (got == 0) {
            return;
        }
        count -= got;
    }
}

std::string readToEnd(std::size_t chunk, int pauseMicroseconds) {
    std::string all;
    std::vector<char> buffer(chunk);
    for (;;) {
        nap(pauseMicroseconds);
        const std::size_t count = readSome(buffer.data(), buffer.size());
        if (count == 0) {
            return all;
        }
        all.append(buffer.data(), count);
    }
}

std::optional<std::string> readFile(const std::string& path) {
    const int fd = ::open(path.c_str(), O_RDONLY);
    if (fd < 0) {
        return std::nullopt;
    }
    std::string contents;
    char buffer[4096];
    for (ssize_t count = 0; (count = ::read(fd, buffer, sizeof buffer)) > 0;) {
        contents.append(buffer, static_cast<std::size_t>(count));
    }
    ::close(fd);
    return contents;
}

void writeFile(const std::string& path, std::string_view contents) {
    const std::string unfinished = path + ".unfinished";
    writeTo(unfinished, O_TRUNC, contents);
    std::rename(unfinished.c_str(), path.c_str());
}

void appendFile(const std::string& path, std::string_view contents) {
    writeTo(path, O_APPEND, contents);
}

void nap(int microseconds) {
    if (microseconds > 0) {
        const timespec pause{0, microseconds * 1000L};
        ::nanosleep(&pause, nullptr);
    }
}

void waitForFile(const std::string& path) {
    while (::access(path.c_str(), F_OK) != 0) {
        nap(500);
    }
}

std::string unescaped(std::string_view text) {
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\' || i + 1 == text.size()) {
            bytes.push_back(text[i]);
            continue;
        }
        switch (text[++i]) {
        case 'n':
            bytes.push_back('\n');
            break;
        case 'r':
            bytes.push_back('\r');
            break;
        case 't':
            bytes.push_back('\t');
            break;
        case 'x':
            if (i + 2 < text.size()) {
                bytes.push_back(
                    static_cast<char>(hexValue(text[i + 1]) * 16 + hexValue(text[i + 2])));
                i += 2;
            }
            break;
        default:
            bytes.push_back(text[i]);
        }
    }
    return bytes;
}

}  // namespace child
