// The six things the setup window asks of the first-run process: their buttons, in the window's
// order, and what each sends. Constants and pure functions; any thread.
#pragma once

#include "common/Json.h"

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace veltrix {

inline constexpr std::string_view kConfigureTls = "tls.configure";
inline constexpr std::string_view kStartEnrollment = "enrollment.start";
inline constexpr std::string_view kPollEnrollment = "enrollment.poll";
inline constexpr std::string_view kResumeEnrollment = "enrollment.resume";
inline constexpr std::string_view kRenewEnrollment = "enrollment.renew";
inline constexpr std::string_view kConfigurePassword = "password.configure";

struct SetupButton {
    std::string_view title;
    std::string_view action;
};

// Two buttons a row.
inline constexpr std::array<std::array<SetupButton, 2>, 3> kSetupButtonRows{{
    {{{"Validate TLS", kConfigureTls}, {"Request Account Approval", kStartEnrollment}}},
    {{{"Check Approval", kPollEnrollment}, {"Resume Saved Approval", kResumeEnrollment}}},
    {{{"Renew Saved Approval", kRenewEnrollment}, {"Set DVR Login", kConfigurePassword}}},
}};

// The setup form, exactly as typed and ticked.
struct SetupForm {
    std::string certificate;
    std::string key;
    std::string ca;
    std::string username;
    std::string password;
    bool trustCA = false;
    bool trustProxy = false;
};

// A DVR password's length in UTF-8 bytes.
inline constexpr std::size_t kShortestPassword = 15;
inline constexpr std::size_t kLongestPassword = 128;

// The three conditions of setting the login: a confirmed approval, the consent to the loopback
// gateway, and a password of the right length.
[[nodiscard]] bool loginAllowed(bool paired, const SetupForm& form);

// The request values of an action; an empty object for every action that has none.
[[nodiscard]] Json::Object setupValues(std::string_view action, const SetupForm& form,
                                       const std::string& origin);

}  // namespace veltrix
