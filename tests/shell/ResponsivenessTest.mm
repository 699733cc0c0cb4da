// The main thread goes on answering while an action is under way, whatever its child does. What
// the child waits for happens only after many answers, so a main thread that waited for the child
// would wait for ever. How long the longest answer took is written down and decides nothing.
#include "shell/ShellTest.h"

#include "support/AppKitDriver.h"
#include "support/MainLoopWatch.h"

#include <functional>
#include <latch>

#include <unistd.h>

using namespace veltrix;
using namespace veltrix::test;

namespace {

constexpr int kAnswers = 200;

class ResponsivenessTest : public ShellTest {
  protected:
    void TearDown() override { release(); }

    // Lets the application work until it has answered so often, and writes the longest wait down.
    [[nodiscard]] bool answersGoOn(const char* name, const std::function<void()>& begin,
                                   const std::function<bool()>& reached,
                                   const std::function<void()>& finish) {
        const MainLoopWatch watch;
        begin();
        const bool answered = pumpUntil([&] { return reached() && watch.answers() >= kAnswers; });
        finish();
        EXPECT_TRUE(untilIdle());
        RecordProperty(name, std::to_string(watch.longestWait().count()));
        return answered;
    }

    // The same for an action that cannot end before `finish`, and with no action, to compare.
    void expectAnswersDuringAnAction(const std::function<bool()>& reached,
                                     const std::function<void()>& finish) {
        const auto nothing = [] {};
        ASSERT_TRUE(answersGoOn(
            "idle", nothing, [] { return true; }, nothing));
        const auto stillRunning = [&] { return (bool)[app busy] && reached(); };
        ASSERT_TRUE(answersGoOn(
            "action", [this] { [app perform:"status"]; }, stillRunning, finish));
        EXPECT_EQ(status(), "DVR running and healthy.");
    }

    static constexpr const char* kReply = R"({"ok":true,"code":"running"})";
};

TEST_F(ResponsivenessTest, WhileAScriptTakesItsTime) {
    launch();
    scriptsHold(kReply);
    expectAnswersDuringAnAction([] { return true; }, [this] { release(); });
}

TEST_F(ResponsivenessTest, WhileAScriptFloodsItsErrors) {
    launch();
    const std::string flooded = resources.scratch("flooded");
    scriptsDo("fill-errors 300000000\ntouch " + flooded + "\nawait " +
              resources.scratch("released") + "\nprint " + kReply + "\n");
    expectAnswersDuringAnAction([&] { return ::access(flooded.c_str(), F_OK) == 0; },
                                [this] { release(); });
}

TEST_F(ResponsivenessTest, WhileAScriptFloodsItsReply) {
    launch();
    const std::string flooded = resources.scratch("flooded");
    scriptsDo("fill 300000000\ntouch " + flooded + "\nawait " + resources.scratch("released") +
              "\n");
    const MainLoopWatch watch;
    [app perform:"status"];
    EXPECT_TRUE(pumpUntil(
        [&] { return ::access(flooded.c_str(), F_OK) == 0 && watch.answers() >= kAnswers; }));
    EXPECT_TRUE((bool)[app busy]);
    release();
    ASSERT_TRUE(untilIdle());
    RecordProperty("action", std::to_string(watch.longestWait().count()));
}

TEST_F(ResponsivenessTest, WhileTheLaunchTakesItsTime) {
    std::latch launched(1);
    DesktopEnvironment slow = environment();
    slow.services.run = [&launched](const ActionJob& job, const std::vector<std::string>& variables,
                                    Dispatcher& dispatcher) {
        launched.wait();
        return runActionJob(job, variables, dispatcher);
    };
    app = adoptNS([[RecordingApp alloc] initWithEnvironment:std::move(slow)]);
    [NSApp setDelegate:app];
    [app applicationDidFinishLaunching:
             [NSNotification notificationWithName:NSApplicationDidFinishLaunchingNotification
                                           object:NSApp]];
    scriptsReply(kReply);
    expectAnswersDuringAnAction([] { return true; }, [&launched] { launched.count_down(); });
}

}  // namespace
