// Whole actions with real queues and real child processes; only the clock is the test's own.
#include "core/OperatorFixture.h"

#include "common/Environment.h"
#include "common/Files.h"
#include "support/ChildReport.h"
#include "support/ManualClock.h"
#include "support/Processes.h"
#include "support/WaitFor.h"

#include <fstream>

namespace veltrix::test {
namespace {

using namespace std::chrono_literals;

class OperatorEndToEnd : public testing::Test {
  protected:
    OperatorEndToEnd() { shell.texts.node = resources.node(); }

    [[nodiscard]] std::string path(std::string_view name) const { return resources.scratch(name); }
    void touch(std::string_view name) const { std::ofstream(path(name)).flush(); }
    [[nodiscard]] bool awaitIdle() const {
        return waitFor([this] { return !subject->busy(); });
    }

    // Performs the command to its end and returns what the shell was told.
    [[nodiscard]] Calls perform(std::string_view command) {
        subject->perform(command);
        EXPECT_TRUE(awaitIdle());
        EXPECT_TRUE(clock.pending().empty());
        return shell.takeCalls();
    }

    const ResourceFixture resources;
    ManualClock clock;
    RecordingShell shell;
    const std::shared_ptr<Operator> subject = Operator::make(
        shell, {clock, resources.asFunction(), [] {
                    return std::vector<std::string>{"PATH=/bin", "SECRET=x", "docker_host=d"};
                }});
};

TEST_F(OperatorEndToEnd, StartsTheRecorder) {
    const std::string script = resources.script(
        "desktop/service.mjs", "report " + path("report") + "\nread-input " + path("input") +
                                   "\nprint {\"ok\":true,\"code\":\"started\"}");
    EXPECT_EQ(perform("start"), (Calls{"save", "confirm: Start DVR?"} + kStarted + kEnded +
                                 (Calls{"status: DVR started.", "tool tip: DVR started."})));
    const ChildReport seen = awaitReport(path("report"));
    EXPECT_EQ(seen.arguments, (std::vector<std::string>{resources.node(), script, "start", "--home",
                                                        "/Users/sam/DVR"}));
    EXPECT_EQ(seen.environment, (std::vector<std::string>{"PATH=/bin", "docker_host=d"}));
    EXPECT_EQ(contentsOf(path("input")), "");
    EXPECT_FALSE(hasChildren());
}

TEST_F(OperatorEndToEnd, InstallsWithTheFormAndAdoptsTheRuntime) {
    shell.texts.storage = "/Volumes/\u00e9";
    const std::string script = resources.script(
        "desktop/install.mjs",
        "report " + path("report") + "\nread-input " + path("input") +
            "\nprint {\"ok\":true,\"code\":\"installed_stopped\",\"node\":\"/new/node\"}");
    const std::string sentence = "DVR installed and stopped. HTTPS proxy and account/source "
                                 "authorization must be ready before use.";
    EXPECT_EQ(perform("install"),
              (Calls{"save", "confirm: Install DVR for this account?"} + kStarted + kEnded +
               said(sentence) + (Calls{"node: /new/node", "save"})));
    EXPECT_EQ(awaitReport(path("report")).arguments,
              (std::vector<std::string>{resources.node(), script}));
    EXPECT_EQ(parseJsonObject(contentsOf(path("input"))),
              (Json::Object{{"home", Json("/Users/sam/DVR")},
                            {"storage", Json("/Volumes/\u00e9")},
                            {"origin", Json("https://dvr.home")},
                            {"retentionDays", Json("30")}}));
}

TEST_F(OperatorEndToEnd, OpensTheConfigurationFolder) {
    resources.script("desktop/controller.mjs",
                     "report " + path("report") +
                         "\nprint {\"ok\":true,\"code\":\"ready\",\"configurationPath\":\"/c\"}");
    EXPECT_EQ(perform("configuration"),
              (Calls{"save"} + kStarted + kEnded + said("Ready.") + Calls{"open folder: /c"}));
    EXPECT_EQ(awaitReport(path("report")).arguments.at(2), "inspect");
}

TEST_F(OperatorEndToEnd, PassesAnEmptyWordAsAnEmptyArgument) {
    resources.script("desktop/controller.mjs", "report " + path("report"));
    static_cast<void>(perform(""));
    const ChildReport seen = awaitReport(path("report"));
    ASSERT_EQ(seen.arguments.size(), 5u);
    EXPECT_EQ(seen.arguments[2], "");
}

TEST_F(OperatorEndToEnd, UpdatesUnderTheBundlesOwnRuntime) {
    shell.texts.node = "/no/such/node";
    resources.script("desktop/update.mjs",
                     "report " + path("report") +
                         "\nprint {\"ok\":true,\"code\":\"updated_stopped\"}");
    EXPECT_EQ(perform("upgrade").back(), "tool tip: DVR updated. Configuration and recordings "
                                         "retained; service stays stopped.");
    const ChildReport seen = awaitReport(path("report"));
    EXPECT_EQ(seen.arguments.at(0), resources.node());
    EXPECT_EQ(seen.arguments.at(2), "upgrade");
}

TEST_F(OperatorEndToEnd, SaysThatTheOutcomeIsUnknownWhateverGoesWrong) {
    const Calls unknown =
        Calls{"save"} + kStarted + kEnded +
        (Calls{"status: Action outcome unknown. Refresh status before retrying.",
               "tool tip: Action outcome unknown. Refresh status before retrying.",
               "bring forward"});
    EXPECT_EQ(perform("status"), unknown) << "the script is missing";
    for (const char* steps : {"", "exit 1", "print {", "print []", "fill 9000", "die"}) {
        resources.script("desktop/service.mjs", steps);
        EXPECT_EQ(perform("status"), unknown) << steps;
    }
    shell.texts.node = "/no/such/node";
    EXPECT_EQ(perform("status"), unknown) << "Node is missing";
    EXPECT_FALSE(hasChildren());
}

TEST_F(OperatorEndToEnd, RunsNothingTwiceAtOnceAndNeverBlocksTheMainThread) {
    resources.script("desktop/service.mjs",
                     "await " + path("go") + "\nprint {\"ok\":true,\"code\":\"running\"}");
    resources.script("desktop/controller.mjs", "touch " + path("second"));
    subject->perform("status");
    EXPECT_TRUE(subject->busy());
    shell.calls.clear();
    for (const std::string_view word : {"check", "setup", "save", "upgrade", "", "status"}) {
        subject->perform(word);
    }
    ASSERT_TRUE(clock.waitForPending(1));
    EXPECT_EQ(clock.pending(), std::vector<std::chrono::milliseconds>{200s});
    EXPECT_EQ(shell.calls, Calls());
    touch("go");
    ASSERT_TRUE(awaitIdle());
    EXPECT_EQ(shell.calls, kEnded + said("DVR running and healthy."));
    EXPECT_FALSE(fileExists(path("second")));
    EXPECT_FALSE(hasChildren());
}

TEST_F(OperatorEndToEnd, EndsAScriptThatTakesTooLong) {
    resources.script("desktop/service.mjs", "hang");
    subject->perform("status");
    ASSERT_TRUE(clock.waitForPending(1));
    clock.advance(200s);
    ASSERT_TRUE(awaitIdle());
    EXPECT_EQ(shell.calls.back(), "bring forward");
    EXPECT_FALSE(hasChildren());
}

TEST_F(OperatorEndToEnd, RunsHundredsOfActionsAndLeavesNothingBehind) {
    resources.script("desktop/service.mjs", "print {\"ok\":true,\"code\":\"running\"}");
    static_cast<void>(perform("status"));
    const std::vector<int> before = openDescriptors();
    for (int i = 0; i < 100; ++i) {
        ASSERT_EQ(perform("status").back(), "tool tip: DVR running and healthy.");
    }
    EXPECT_EQ(openDescriptors(), before);
    EXPECT_FALSE(hasChildren());
}

TEST(OperatorWithTheRealEnvironment, PassesTheListedNamesAlone) {
    const ResourceFixture resources;
    RecordingShell shell;
    shell.texts.node = resources.node();
    resources.script("desktop/service.mjs", "report " + resources.scratch("report"));
    const auto subject =
        Operator::make(shell, {systemDispatcher(), resources.asFunction(), processEnvironment});
    subject->perform("status");
    ASSERT_TRUE(waitFor([&] { return !subject->busy(); }));
    EXPECT_EQ(awaitReport(resources.scratch("report")).environment,
              filterEnvironment(processEnvironment(), kOperatorEnvironment));
}

}  // namespace
}  // namespace veltrix::test
