#include "common/Environment.h"

#include <algorithm>
#include <set>

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

}  // namespace

std::vector<std::string> processEnvironment() {
    std::vector<std::string> entries;
    for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
        entries.emplace_back(*entry);
    }
    return entries;
}

std::vector<std::string> filterEnvironment(const std::vector<std::string>& entries,
                                           std::span<const std::string_view> allowlist) {
    std::vector<std::string> kept;
    std::set<std::string_view> seen;
    for (const std::string& entry : entries) {
        const std::size_t end = entry.find('=');
        if (end == std::string::npos) {
            continue;
        }
        const std::string_view name = std::string_view(entry).substr(0, end);
        if (isListed(name, allowlist) && seen.insert(name).second) {
            kept.push_back(entry);
        }
    }
    return kept;
}

}  // namespace veltrix
