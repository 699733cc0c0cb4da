// The sentences of the setup window: what each outcome code of the first-run process says on its
// status line, and what the window itself says. The one home of each. Constants; any thread.
#pragma once

#include "common/OutcomeTable.h"

#include <span>
#include <string_view>

namespace veltrix {

inline constexpr std::string_view kSetupStatusAtOpening = "DVR stays stopped during setup.";
inline constexpr std::string_view kSetupWorking = "Working...";
inline constexpr std::string_view kSetupWait = "Wait for the current setup request.";
inline constexpr std::string_view kLoginRefused =
    "Account approval, loopback gateway consent and a 15-128-byte password are required.";

// Codes with effects of their own, handled before the table.
inline constexpr std::string_view kEnrollmentPending = "enrollment_pending";
inline constexpr std::string_view kEnrollmentPaired = "enrollment_paired";
inline constexpr std::string_view kLoginConfigured = "login_configured";

// The approval code follows directly.
inline constexpr std::string_view kApprovalCodePrefix = "Account approval code: ";
inline constexpr std::string_view kApprovalPending =
    "Approval pending. Check again after the requested interval.";
inline constexpr std::string_view kApprovalValidated =
    "Saved account approval validated. You can set the DVR login.";
inline constexpr std::string_view kLoginConfiguredSentence =
    "DVR login configured. Service stays stopped.";

// What a missing or unusable code counts as, and what that and every unknown code say.
inline constexpr std::string_view kSetupFailed = "setup_failed";
inline constexpr std::string_view kSetupFailedSentence =
    "Setup request failed. Check certificate, consent and account approval; service was not "
    "started.";

[[nodiscard]] std::span<const Outcome> setupOutcomes();
[[nodiscard]] std::string_view setupSentence(std::string_view code);

}  // namespace veltrix
