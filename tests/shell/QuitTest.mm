// Quitting, from the menu and otherwise.
#include "shell/ShellTest.h"

#include "support/AppKitDriver.h"

using namespace veltrix;
using namespace veltrix::test;

namespace {

class QuitTest : public ShellTest {
  protected:
    void SetUp() override { launch(); }

    [[nodiscard]] const std::vector<bool>& terminations() const { return app.get()->_terminations; }
};

TEST_F(QuitTest, TheMenuItemTerminatesAnIdleApplication) {
    ASSERT_TRUE(chooseMenuItem(menu(), @"Quit Desktop App"));
    EXPECT_EQ(terminations(), std::vector<bool>{true});
    EXPECT_EQ(status(), "Service status unknown");
}

TEST_F(QuitTest, TheMenuItemIsRefusedInFrontWhileAnActionRuns) {
    scriptsHold(R"({"ok":true,"code":"running"})");
    [app perform:"status"];
    pressCloseButton(window());
    ASSERT_TRUE(pumpUntil([this] { return ![window() isVisible]; }));
    ASSERT_TRUE(chooseMenuItem(menu(), @"Quit Desktop App"));
    EXPECT_TRUE(terminations().empty());
    EXPECT_EQ(status(), "Wait for the current action before quitting.");
    EXPECT_TRUE((bool)[window() isVisible]);
    EXPECT_TRUE([app busy]);

    release();
    ASSERT_TRUE(untilIdle());
    EXPECT_EQ(status(), "DVR running and healthy.");
    ASSERT_TRUE(chooseMenuItem(menu(), @"Quit Desktop App"));
    EXPECT_EQ(terminations(), std::vector<bool>{true});
}

TEST_F(QuitTest, EveryOtherRequestIsRefusedSilentlyWhileAnActionRuns) {
    scriptsHold(R"({"ok":true,"code":"running"})");
    [app perform:"status"];
    [window() orderOut:nil];
    [NSApp terminate:nil];
    EXPECT_EQ(terminations(), std::vector<bool>{false});
    EXPECT_EQ(status(), "Working...");
    EXPECT_FALSE((bool)[window() isVisible]);

    release();
    ASSERT_TRUE(untilIdle());
    [NSApp terminate:nil];
    EXPECT_EQ(terminations(), (std::vector<bool>{false, true}));
}

TEST_F(QuitTest, AQuestionIsNoAction) {
    const ModalResponder responder([this](NSWindow* alert) {
        EXPECT_EQ([app applicationShouldTerminate:NSApp], NSTerminateCancel);
        EXPECT_EQ(terminations(), std::vector<bool>{true});
        pressButtonTitled(alert, @"Cancel");
    });
    [app perform:"start"];
    EXPECT_TRUE(responder.responded());
}

}  // namespace
