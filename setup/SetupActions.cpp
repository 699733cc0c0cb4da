#include "setup/SetupActions.h"

#include <algorithm>

namespace veltrix {
namespace {

using MakeValues = Json::Object (*)(const SetupForm& form, const std::string& origin);

Json::Object tlsValues(const SetupForm& form, const std::string& origin) {
    Json::Object values{
        {"origin", Json(origin)},
        {"certificateFile", Json(form.certificate)},
        {"keyFile", Json(form.key)},
        {"approveLocalCA", Json(form.trustCA)},
    };
    if (!form.ca.empty()) {
        values.emplace("approvedCAFile", Json(form.ca));
    }
    return values;
}

Json::Object approvalValues(const SetupForm&, const std::string&) {
    return {{"name", Json("Desktop DVR")}, {"recordingAccess", Json("private")}};
}

Json::Object loginValues(const SetupForm& form, const std::string&) {
    return {
        {"username", Json(form.username)},
        {"password", Json(form.password)},
        {"trustLocalProxy", Json(true)},
    };
}

struct ValuesRule {
    std::string_view action;
    MakeValues make;
};

constexpr std::array<ValuesRule, 3> kValuesRules{{
    {kConfigureTls, tlsValues},
    {kStartEnrollment, approvalValues},
    {kConfigurePassword, loginValues},
}};

}  // namespace

bool loginAllowed(bool paired, const SetupForm& form) {
    return paired && form.trustProxy && form.password.size() >= kShortestPassword &&
           form.password.size() <= kLongestPassword;
}

Json::Object setupValues(std::string_view action, const SetupForm& form,
                         const std::string& origin) {
    const auto* rule =
        std::find_if(kValuesRules.begin(), kValuesRules.end(),
                     [action](const ValuesRule& row) { return row.action == action; });
    return rule == kValuesRules.end() ? Json::Object() : rule->make(form, origin);
}

}  // namespace veltrix
