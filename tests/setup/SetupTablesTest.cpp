// Every constant of the setup channel, window and outcomes, letter for letter.
#include "setup/PublicOrigin.h"
#include "setup/SetupActions.h"
#include "setup/SetupIPC.h"
#include "setup/SetupOutcomes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <string_view>
#include <utility>
#include <vector>

namespace veltrix::test {
namespace {

using std::chrono::seconds;
using Rows = std::vector<std::pair<std::string_view, std::string_view>>;

const Rows kAgreedOutcomes{
    {"tls_configured_stopped",
     "Certificate validated; gateway stays stopped. Client devices must also trust its issuer."},
    {"tls_untrusted_issuer",
     "Certificate issuer is not trusted. Supply a valid chain or explicitly approved local CA."},
    {"tls_hostname_mismatch", "Certificate does not cover the configured server address."},
    {"tls_key_mismatch", "Certificate and private key do not match."},
    {"tls_key_permissions", "Private key must be owned by this account with mode 0600."},
    {"unprivileged_tls_port_required",
     "Use a free HTTPS port above 1023, such as 8443, or an existing external TLS proxy."},
    {"gateway_port_conflicts_backend",
     "Port 3000 belongs to the backend. Choose another HTTPS port."},
    {"existing_login_requires_dashboard",
     "Existing login policy preserved. Use account management for changes."},
    {"existing_state_requires_dashboard",
     "Existing account or recordings preserved. Use the dashboard for management."},
    {"saved_peer_missing", "No saved approval credential. Existing account state was preserved; "
                           "use account management for recovery."},
    {"saved_peer_scope_mismatch", "Saved approval does not match this server, installation or "
                                  "account. No credentials were replaced."},
    {"saved_peer_lease_invalid",
     "Saved approval lease is expired or invalid. Choose Renew Saved Approval."},
    {"saved_peer_renewal_retry", "Renewal did not finish. Retry Renew Saved Approval within 60 "
                                 "seconds; the prior operation is preserved."},
    {"saved_peer_reapproval_required",
     "Renewal requires owner reapproval. Existing credentials were preserved; contact support "
     "without resetting this installation."},
    {"existing_tls_configuration",
     "Existing TLS settings preserved. Use a reviewed certificate replacement."},
};

constexpr std::string_view kAgreedFallback =
    "Setup request failed. Check certificate, consent and account approval; service was not "
    "started.";

TEST(SetupTables, HoldTheFifteenOutcomesInOrder) {
    Rows rows;
    for (const Outcome& outcome : setupOutcomes()) {
        rows.emplace_back(outcome.code, outcome.sentence);
    }
    EXPECT_EQ(rows.size(), 15U);
    EXPECT_EQ(rows, kAgreedOutcomes);
}

TEST(SetupTables, FindEverySentenceByItsWholeCode) {
    for (const auto& [code, sentence] : kAgreedOutcomes) {
        EXPECT_EQ(setupSentence(code), sentence) << code;
    }
}

TEST(SetupTables, SayTheFallbackForWhateverIsNoCodeOfTheTable) {
    for (const std::string_view code :
         {"setup_failed", "", "tls_key", "tls_key_mismatch ", " tls_key_mismatch",
          "TLS_KEY_MISMATCH", "Tls_key_mismatch", "tls_key_mismatchx", "action_incomplete",
          "enrollment_pending", "enrollment_paired", "login_configured"}) {
        EXPECT_EQ(setupSentence(code), kAgreedFallback) << '"' << code << '"';
    }
    EXPECT_EQ(setupSentence(std::string_view("tls_key_mismatch\0", 17)), kAgreedFallback);
}

TEST(SetupTables, NameTheSpecialCodesAndWhatTheySay) {
    EXPECT_EQ(kEnrollmentPending, "enrollment_pending");
    EXPECT_EQ(kApprovalCodePrefix, "Account approval code: ");
    EXPECT_EQ(kApprovalPending, "Approval pending. Check again after the requested interval.");

    EXPECT_EQ(kEnrollmentPaired, "enrollment_paired");
    EXPECT_EQ(kApprovalValidated, "Saved account approval validated. You can set the DVR login.");

    EXPECT_EQ(kLoginConfigured, "login_configured");
    EXPECT_EQ(kLoginConfiguredSentence, "DVR login configured. Service stays stopped.");

    EXPECT_EQ(kSetupFailed, "setup_failed");
    EXPECT_EQ(kSetupFailedSentence, kAgreedFallback);
}

TEST(SetupTables, WordTheWindowsOwnSentences) {
    EXPECT_EQ(kSetupStatusAtOpening, "DVR stays stopped during setup.");
    EXPECT_EQ(kSetupWorking, "Working...");
    EXPECT_EQ(kSetupWait, "Wait for the current setup request.");
    EXPECT_EQ(kLoginRefused, "Account approval, loopback gateway consent and a 15-128-byte "
                             "password are required.");
}

TEST(SetupTables, ArrangeTheSixButtonsInThreeRowsOfTwo) {
    const std::vector<Rows> agreed{
        {{"Validate TLS", "tls.configure"}, {"Request Account Approval", "enrollment.start"}},
        {{"Check Approval", "enrollment.poll"}, {"Resume Saved Approval", "enrollment.resume"}},
        {{"Renew Saved Approval", "enrollment.renew"}, {"Set DVR Login", "password.configure"}},
    };
    std::vector<Rows> rows;
    for (const auto& row : kSetupButtonRows) {
        Rows& buttons = rows.emplace_back();
        for (const SetupButton& button : row) {
            buttons.emplace_back(button.title, button.action);
        }
    }
    EXPECT_EQ(rows, agreed);
}

TEST(SetupTables, LetSevenEnvironmentNamesThrough) {
    const std::vector<std::string_view> agreed{"PATH",   "HOME", "USER",  "LOGNAME",
                                               "TMPDIR", "LANG", "LC_ALL"};
    EXPECT_TRUE(std::equal(agreed.begin(), agreed.end(), kSetupEnvironment.begin(),
                           kSetupEnvironment.end()));
}

TEST(SetupTables, SetTheLimitsOfTheChannel) {
    EXPECT_EQ(kRequestLimit, seconds(20));
    EXPECT_EQ(kPasswordRequestLimit, seconds(60));
    EXPECT_EQ(kCloseLimit, seconds(5));
    EXPECT_EQ(kReplyLineLimit, 8192U);
    EXPECT_EQ(kSettingsFileLimit, 65536U);
    EXPECT_EQ(kShortestPassword, 15U);
    EXPECT_EQ(kLongestPassword, 128U);
}

TEST(SetupTables, NameTheChannelsQueueAndScript) {
    EXPECT_EQ(std::string_view(kSetupQueueLabel), "veltrix.desktop.setup");
    EXPECT_EQ(std::string_view(kFirstRunScript), "desktop/first-run.mjs");
}

TEST(SetupTables, SpellTheFailureReply) {
    EXPECT_EQ(setupFailureReply(), (Reply{{"ok", Json(false)}, {"code", Json("setup_failed")}}));
}

}  // namespace
}  // namespace veltrix::test
