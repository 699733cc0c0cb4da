// The sentences of operator actions: what each outcome code of a script says on the status line,
// and what the shell itself says. The one home of each of them. Constants; any thread.
#pragma once

#include "common/OutcomeTable.h"

#include <span>
#include <string_view>

namespace veltrix {

inline constexpr std::string_view kWorking = "Working...";
inline constexpr std::string_view kSettingsSaved = "Desktop settings saved. Service unchanged.";
inline constexpr std::string_view kOpenCompleteBundle =
    "Open the complete bundle to update or repair this installation.";
inline constexpr std::string_view kFolderNotOpened = "Could not open the configuration folder.";
inline constexpr std::string_view kBrowserNotOpened = "Could not open the configured browser.";

// For a code that is a string but stands in no row.
inline constexpr std::string_view kUnknownOutcome = "Action failed. Check configuration.";

// What a reply without a usable code counts as.
inline constexpr std::string_view kActionIncomplete = "action_incomplete";

[[nodiscard]] std::span<const Outcome> operatorOutcomes();
[[nodiscard]] std::string_view operatorSentence(std::string_view code);

}  // namespace veltrix
