// Bytes in and out of the fixture child, by plain system calls, so that every write is one write.
// Single-threaded. A failed write means that the reader has gone and ends nothing: the step after
// it may still have something to do.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace child {

bool writeAll(int fd, std::string_view bytes);

// The next line of standard input without its line feed; nothing at the end. Reads one byte a call
// and so never takes more than it returns.
std::optional<std::string> readLine();

// Reads and drops `count` bytes of standard input, fewer if it ends before, and not one more.
void readBytes(unsigned long long count);

// Standard input up to its end, `chunk` bytes a call with a pause before each.
std::string readToEnd(std::size_t chunk, int pauseMicroseconds);

std::optional<std::string> readFile(const std::string& path);

// Under a temporary name first: whoever waits for the file to appear never sees half of it.
void writeFile(const std::string& path, std::string_view contents);
void appendFile(const std::string& path, std::string_view contents);

void nap(int microseconds);
void waitForFile(const std::string& path);

// "\n", "\r", "\t", "\\" and "\xNN" become the byte they spell.
std::string unescaped(std::string_view text);

}  // namespace child
