#include "common/Environment.h"

#include <algorithm>
#include <utility>

extern "C" char** environ;  // NOLINT(readability-redundant-declaration): POSIX declares it nowhere

namespace veltrix {
namespace {

char upperCased(char letter) {
    return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
}

bool isListed(std::string_view name, std::span<const std::string_view> allowlist) {
    return std::any_of(allowlist.begin(), allowlist.end(), [name](std::string_view listed) {
        return std::equal(
            name.begin(), name.end(), listed.begin(), listed.end(),
            [](char letter, char listedLetter) { return upperCased(letter) == listedLetter; });
    });
}

// `name` includes its "=".
bool hasName(const std::vector<std::string>& entries, std::string_view name) {
    return std::any_of(entries.begin(), entries.end(), [name](const std::string& entry) {
        return std::string_view(entry).starts_with(name);
    });
}

}  // namespace

std::vector<std::string> processEnvironment() {
    std::vector<std::string> entries;
    for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
        entries.emplace_back(*entry);
    }
    return entries;
}

std::vector<std::string> filterEnvironment(std::vector<std::string> entries,
                                           std::span<const std::string_view> allowlist) {
    std::vector<std::string> kept;
    for (std::string& entry : entries) {
        const std::size_t end = entry.find('=');
        if (end == std::string::npos) {
            continue;
        }
        const std::string_view text = entry;
        if (isListed(text.substr(0, end), allowlist) && !hasName(kept, text.substr(0, end + 1))) {
            kept.push_back(std::move(entry));
        }
    }
    return kept;
}

}  // namespace veltrix
