// A setup session over the real channel with a real first-run process, and where the password goes
// on its way: into the request, and nowhere else.
#include "SetupIPCFixture.h"
#include "SetupSessionFixture.h"
#include "support/Processes.h"
#include "support/TempFolder.h"
#include "support/WaitFor.h"

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

namespace veltrix::test {
namespace {

const std::string kSecret = "correct horse battery \u20AC";

class SetupSessionOverTheChannel : public SetupIPCTest {
  protected:
    SetupSessionOverTheChannel() {
        view->session = SetupSession::make(*view, channel, "https://dvr.example");
        journal.watch(view->session);
        view->typed.trustProxy = true;
        view->typed.username = "owner";
        view->typed.password = kSecret;
    }
    void TearDown() override {
        view.reset();
        SetupIPCTest::TearDown();
    }

    void perform(std::string_view action) {
        view->session->performSetupAction(action);
        EXPECT_TRUE(waitFor([this] { return !view->session->busy(); }));
    }

    Journal journal;
    std::shared_ptr<RecordingView> view = std::make_shared<RecordingView>(journal);
};

TEST_F(SetupSessionOverTheChannel, SetsTheLoginClosesTheChannelAndStartsAnew) {
    firstRun("answer {\"code\":\"enrollment_paired\"}\\n\n"
             "answer {\"code\":\"login_configured\"}\\n\necho-all\n");
    perform("enrollment.resume");
    EXPECT_EQ(view->status, "Saved account approval validated. You can set the DVR login.");
    const pid_t pid = report().pid;
    perform("password.configure");
    EXPECT_EQ(view->status, "DVR login configured. Service stays stopped.");
    EXPECT_EQ(view->typed.password, "");

    firstRun("answer-all {\"code\":\"saved_peer_missing\"}\\n\n");
    perform("enrollment.renew");
    EXPECT_EQ(view->status, "No saved approval credential. Existing account state was preserved; "
                            "use account management for recovery.");
    EXPECT_NE(report().pid, pid);
    EXPECT_EQ(received().back(), R"({"action":"enrollment.renew","values":{}})");
    EXPECT_TRUE(awaitExit(pid));
}

TEST_F(SetupSessionOverTheChannel, SaysFailedForEveryFailureOfTheChannel) {
    const std::string failed = "Setup request failed. Check certificate, consent and account "
                               "approval; service was not started.";
    for (const char* steps : {"answer []\\n\n", "exit 0\n",
                              "answer {\"code\":\"enrollment_paired\n", "answer {}\\n\n"}) {
        view->status.clear();
        firstRun(steps);
        perform("enrollment.poll");
        EXPECT_EQ(view->status, failed) << steps;
        ASSERT_TRUE(awaitExit(report().pid));
    }
    EXPECT_FALSE(view->session->paired());
}

TEST_F(SetupSessionOverTheChannel, ClosesTheWindowWhenTheProcessHasExited) {
    const std::string ended = resources.scratch("ended");
    const std::string go = resources.scratch("go");
    firstRun("answer {}\\n\necho-all\ntouch " + ended + "\nawait " + go + "\n");
    perform("enrollment.poll");
    static_cast<void>(journal.take());

    EXPECT_FALSE(view->session->windowShouldClose());
    ASSERT_TRUE(awaitFile(ended));
    EXPECT_EQ(journal.take(), (std::vector<std::string>{"busy: password cleared"}));
    touch(go);
    ASSERT_TRUE(waitFor([this] { return view->session->closing(); }));
    EXPECT_EQ(journal.take(), std::vector<std::string>{"closed: session ended"});
    EXPECT_FALSE(hasChildren());
    EXPECT_TRUE(view->session->windowShouldClose());
}

TEST_F(SetupSessionOverTheChannel, SendsThePasswordInTheRequestAndNowhereElse) {
    const std::string afterwards = resources.scratch("afterwards");
    firstRun("answer {\"code\":\"enrollment_paired\"}\\n\n"
             "answer {\"code\":\"setup_failed\"}\\n\nreport " +
             afterwards + "\necho-all\n");
    perform("enrollment.resume");
    perform("password.configure");
    ASSERT_EQ(received().size(), 2U);
    ASSERT_NE(received().back().find(kSecret), std::string::npos);

    const auto holdsTheSecret = [](const std::string& text) {
        return text.find(kSecret) != std::string::npos;
    };
    const ChildReport seen = awaitReport(afterwards);
    EXPECT_FALSE(seen.arguments.empty());
    EXPECT_FALSE(seen.environment.empty());
    EXPECT_TRUE(std::none_of(seen.arguments.begin(), seen.arguments.end(), holdsTheSecret));
    EXPECT_TRUE(std::none_of(seen.environment.begin(), seen.environment.end(), holdsTheSecret));
    for (const std::string& line : journal.take()) {
        EXPECT_FALSE(holdsTheSecret(line)) << line;
    }
    // The child's own log is the only file that knows it.
    std::filesystem::remove(resources.scratch("received"));
    const auto root = std::filesystem::path(resources.folder()).parent_path();
    for (const auto& entry : std::filesystem::recursive_directory_iterator(root)) {
        if (entry.is_regular_file() && !entry.is_symlink()) {
            EXPECT_FALSE(holdsTheSecret(contentsOf(entry.path()))) << entry.path();
        }
    }
}

}  // namespace
}  // namespace veltrix::test
