// Any lines as an environment: what passes is what the rule says, in order, and nothing else.
#include "common/Environment.h"
#include "fuzz/FuzzTarget.h"
#include "operator/ActionJob.h"
#include "setup/SetupIPC.h"

#include <algorithm>
#include <vector>

namespace veltrix::test {
namespace {

std::vector<std::string> linesOf(std::string_view text) {
    std::vector<std::string> lines;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        lines.emplace_back(text.substr(at, end - at));
        at = end + 1;
    }
    return lines;
}

// Equal but for the case of ASCII letters, whatever the locale.
bool sameName(std::string_view name, std::string_view listed) {
    return std::equal(name.begin(), name.end(), listed.begin(), listed.end(), [](char a, char b) {
        return a == b || (b >= 'A' && b <= 'Z' && a == (b | 0x20));
    });
}

void check(const std::vector<std::string>& entries, std::span<const std::string_view> allowlist) {
    std::vector<std::string> expected;
    std::vector<std::string> names;
    for (const std::string& entry : entries) {
        const std::string name = entry.substr(0, entry.find('='));
        const bool listed =
            std::any_of(allowlist.begin(), allowlist.end(),
                        [&name](std::string_view allowed) { return sameName(name, allowed); });
        const bool isNew = std::find(names.begin(), names.end(), name) == names.end();
        if (name.size() < entry.size() && listed && isNew) {
            names.push_back(name);
            expected.push_back(entry);
        }
    }
    require(filterEnvironment(entries, allowlist) == expected, "what a child learns");
}

}  // namespace
}  // namespace veltrix::test

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::vector<std::string> entries =
        veltrix::test::linesOf(veltrix::test::asText(data, size));
    veltrix::test::check(entries, veltrix::kOperatorEnvironment);
    veltrix::test::check(entries, veltrix::kSetupEnvironment);
    return 0;
}
