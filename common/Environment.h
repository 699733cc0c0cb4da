// The rule for what a child process learns of our environment: exactly the listed names, in any
// letter case, each with its own spelling and value, and nothing added. Pure functions; any thread.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace veltrix {

// This process's environment as "NAME=value" entries (environ(7)), in order.
[[nodiscard]] std::vector<std::string> processEnvironment();

// Keeps the entries whose name, converted to upper case, is in `allowlist`. Upper case means the
// ASCII letters alone: a name with any other letter can never equal a listed one. Of several
// entries with the very same name the first stays, as getenv(3) would answer; an entry without a
// name or without "=" is dropped.
[[nodiscard]] std::vector<std::string>
filterEnvironment(std::vector<std::string> entries, std::span<const std::string_view> allowlist);

}  // namespace veltrix
