// How an outcome code becomes a sentence: by exact comparison in a fixed table, else the table's
// fallback. Shared by the operator's and the setup's outcomes. Pure; any thread.
#pragma once

#include <algorithm>
#include <span>
#include <string_view>

namespace veltrix {

struct Outcome {
    std::string_view code;
    std::string_view sentence;
};

[[nodiscard]] inline std::string_view
sentenceFor(std::string_view code, std::span<const Outcome> table, std::string_view fallback) {
    const auto found = std::find_if(table.begin(), table.end(),
                                    [code](const Outcome& row) { return row.code == code; });
    return found == table.end() ? fallback : found->sentence;
}

}  // namespace veltrix
