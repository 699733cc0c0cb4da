#include "operator/Commands.h"

#include <algorithm>
#include <array>

namespace veltrix {
namespace {

using enum Precondition;
using enum Effect;

constexpr std::nullopt_t kNoQuestion = std::nullopt;
constexpr std::string_view kAsReceived;

constexpr std::array<CommandRule, 13> kRules{{
    {"start", savedSettings, Question::start, runService, kAsReceived},
    {"stop", savedSettings, Question::stop, runService, kAsReceived},
    {"status", savedSettings, kNoQuestion, runService, kAsReceived},
    {"check", savedSettings, kNoQuestion, runController, kAsReceived},
    {"overview", savedSettings, kNoQuestion, runController, kAsReceived},
    {"recordings", savedSettings, kNoQuestion, runController, kAsReceived},
    {"shares", savedSettings, kNoQuestion, runController, kAsReceived},
    {"configuration", savedSettings, kNoQuestion, runController, "inspect"},
    {"install", savedSettings, Question::install, runInstall, kAsReceived},
    {"upgrade", completeBundle, Question::update, runUpdate, kAsReceived},
    {"repair", completeBundle, Question::repair, runUpdate, kAsReceived},
    {"setup", savedSettings, kNoQuestion, openSetup, kAsReceived},
    {"save", savedSettings, kNoQuestion, confirmSaved, kAsReceived},
}};

constexpr CommandRule kOtherWord{"", savedSettings, kNoQuestion, runController, kAsReceived};

}  // namespace

std::span<const CommandRule> commandRules() {
    return kRules;
}

const CommandRule& commandRule(std::string_view word) {
    const auto found = std::find_if(kRules.begin(), kRules.end(),
                                    [word](const CommandRule& rule) { return rule.word == word; });
    return found == kRules.end() ? kOtherWord : *found;
}

}  // namespace veltrix
