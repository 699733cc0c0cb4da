#include "operator/Outcomes.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace veltrix {
namespace {

using Row = std::pair<std::string, std::string>;

const std::vector<Row> kOutcomes{
    {"running", "DVR running and healthy."},
    {"started", "DVR started."},
    {"stopped", "DVR stopped."},
    {"updated_stopped",
     "DVR updated. Configuration and recordings retained; service stays stopped."},
    {"update_repaired_stopped", "Update repaired. Service stays stopped."},
    {"update_rolled_back_stopped",
     "Previous application restored. Configuration and recordings retained."},
    {"no_pending_update", "No interrupted update found."},
    {"stop_services_first", "Stop both DVR and its TLS gateway before updating."},
    {"close_enrollment_first", "Close account setup before updating."},
    {"repair_pending_update", "An interrupted update needs Repair before starting DVR."},
    {"update_in_progress", "Another update is active. Wait before starting DVR."},
    {"insufficient_update_space",
     "Free disk space for the new runtime and retained rollback files."},
    {"gateway_port_unavailable",
     "The configured HTTPS port is already in use. No unrelated process was stopped."},
    {"gateway_unhealthy", "DVR TLS gateway is not healthy. Check its certificate and port."},
    {"gateway_configuration_invalid",
     "TLS gateway could not validate its configuration. Check certificate trust, hostname and "
     "permissions."},
    {"checked", "Configuration checked. Account/source authorization is separate."},
    {"ready", "Ready."},
    {"origin_required", "Configure a trusted HTTPS public origin while DVR is stopped."},
    {"installed_stopped",
     "DVR installed and stopped. HTTPS proxy and account/source authorization must be ready "
     "before use."},
    {"existing_installation",
     "Existing installation preserved. Use its current settings; replacement requires a "
     "reviewed upgrade."},
    {"storage_not_empty", "Choose empty recording storage for a new installation."},
    {"unsafe_storage", "Choose separate private installation and recording folders."},
    {"invalid_retention", "Retention must be between 1 and 3650 days."},
    {"runtime_check_failed", "Bundled runtime check failed. Installation did not start DVR."},
    {"bundle_setup_failed",
     "Setup failed. Check the bundle, HTTPS origin and folder permissions. Existing data was "
     "not removed."},
    {"stopped_or_unhealthy", "DVR is stopped or unhealthy. Run Check Configuration."},
    {"installation_not_ready", "Install or repair the companion with the existing setup package."},
    {"configuration_invalid",
     "Check installation ownership, Node version and private HTTPS settings."},
    {"operator_failed", "Action failed. Check configuration and refresh status before retrying."},
    {"action_incomplete", "Action outcome unknown. Refresh status before retrying."},
};

TEST(Outcomes, AreTheseThirtyInThisOrder) {
    std::vector<Row> rows;
    for (const Outcome& outcome : operatorOutcomes()) {
        rows.emplace_back(outcome.code, outcome.sentence);
    }
    EXPECT_EQ(rows, kOutcomes);
}

TEST(Outcomes, SayTheSentenceOfTheirCode) {
    for (const auto& [code, sentence] : kOutcomes) {
        EXPECT_EQ(operatorSentence(code), sentence) << code;
    }
}

TEST(Outcomes, SayOneSentenceForEveryCodeThatStandsInNoRow) {
    using namespace std::string_view_literals;
    for (const std::string_view code :
         {""sv, "Running"sv, "RUNNING"sv, "running "sv, " running"sv, "run"sv, "running\0"sv,
          "start"sv, "setup_failed"sv, "DVR started."sv, "\u0000"sv}) {
        EXPECT_EQ(operatorSentence(code), "Action failed. Check configuration.") << code;
    }
}

TEST(Outcomes, EndWithAFullStop) {
    for (const Outcome& outcome : operatorOutcomes()) {
        EXPECT_TRUE(outcome.sentence.ends_with('.')) << outcome.code;
    }
}

TEST(Outcomes, KeepTheShellsOwnSentences) {
    EXPECT_EQ(kWorking, "Working...");
    EXPECT_EQ(kSettingsSaved, "Desktop settings saved. Service unchanged.");
    EXPECT_EQ(kOpenCompleteBundle,
              "Open the complete bundle to update or repair this installation.");
    EXPECT_EQ(kFolderNotOpened, "Could not open the configuration folder.");
    EXPECT_EQ(kBrowserNotOpened, "Could not open the configured browser.");
    EXPECT_EQ(kUnknownOutcome, "Action failed. Check configuration.");
    EXPECT_EQ(kActionIncomplete, "action_incomplete");
}

}  // namespace
}  // namespace veltrix
