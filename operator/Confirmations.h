// The questions asked before a risky command. The first button is the safe answer and the
// default; only the second one proceeds. Constants; any thread.
#pragma once

#include <string_view>

namespace veltrix {

enum class Question { install, start, stop, update, repair };

struct Confirmation {
    std::string_view message;
    std::string_view information;
    std::string_view safeButton;
    std::string_view proceedButton;
};

[[nodiscard]] const Confirmation& confirmation(Question question);

}  // namespace veltrix
