#include "operator/Confirmations.h"

#include <gtest/gtest.h>

namespace veltrix {
namespace {

struct Words {
    Question question;
    std::string_view message;
    std::string_view information;
    std::string_view safeButton;
    std::string_view proceedButton;
};

constexpr Words kWords[] = {
    {Question::install, "Install DVR for this account?",
     "Bundled runtime and server files will be installed. Existing installations are not "
     "replaced. The service stays stopped. HTTPS proxy and account authorization are separate.",
     "Cancel", "Install"},
    {Question::start, "Start DVR?",
     "DVR listens on all network interfaces at port 3000. Its configured HTTPS gateway also "
     "starts when present. No firewall or router rules will be changed.",
     "Cancel", "Start"},
    {Question::stop, "Stop DVR?",
     "Active recordings may be interrupted. Saved recordings are retained.", "Keep Running",
     "Stop DVR"},
    {Question::update, "Update DVR?",
     "Stop DVR and close account setup first. Application/runtime files may be replaced; "
     "configuration and recordings are preserved. No service starts automatically.",
     "Cancel", "Continue"},
    {Question::repair, "Repair Interrupted Update?",
     "Stop DVR and close account setup first. Application/runtime files may be replaced; "
     "configuration and recordings are preserved. No service starts automatically.",
     "Cancel", "Continue"},
};

TEST(Confirmations, AskTheseQuestionsInTheseWords) {
    for (const Words& expected : kWords) {
        SCOPED_TRACE(expected.message);
        const Confirmation& asked = confirmation(expected.question);
        EXPECT_EQ(asked.message, expected.message);
        EXPECT_EQ(asked.information, expected.information);
        EXPECT_EQ(asked.safeButton, expected.safeButton);
        EXPECT_EQ(asked.proceedButton, expected.proceedButton);
    }
}

}  // namespace
}  // namespace veltrix
