// A pipe to or from a child process, and the four ways this program moves bytes through one.
// Owned by whoever made it; the blocking calls belong on a worker thread, never on the main one.
//
// Every call survives EINTR and partial transfer (read(2), write(2)). SIGPIPE is ignored from
// process entry on (see ignoreBrokenPipes), so a write to a pipe without a reader is a plain
// failure.
#pragma once

#include "common/UniqueFd.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace veltrix {

struct Pipe {
    UniqueFd readEnd;
    UniqueFd writeEnd;
};

// Both ends are close-on-exec from birth and lie above the three standard descriptors, so that
// wiring them to a child's 0 and 1 can neither collide nor be skipped, even when this process was
// itself started with closed standard streams. Nothing when the descriptor limit is reached.
[[nodiscard]] std::optional<Pipe> makePipe();

// Called once at process entry: a write to a pipe whose reader has gone must not end the program.
void ignoreBrokenPipes();

// Writes all bytes; false as soon as the reader has gone or the write fails.
[[nodiscard]] bool writeAll(int fd, std::string_view bytes);

// Reads to the end of output and returns the first `keep` bytes. The rest is read and dropped, so
// a child that prints without end neither blocks nor costs memory.
[[nodiscard]] std::string drain(int fd, std::size_t keep);

// Reads exactly one byte; nothing at the end of output.
[[nodiscard]] std::optional<char> readByte(int fd);

// Reads a line and its line feed, which is not returned, and never takes anything behind it out of
// the pipe: that belongs to the next reader. A line also ends at the end of output and, with
// whatever follows left in the pipe, after `keep` bytes.
[[nodiscard]] std::string readLine(int fd, std::size_t keep);

}  // namespace veltrix
