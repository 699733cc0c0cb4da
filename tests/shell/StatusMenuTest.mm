// The status item's menu, row by row, and what its rows hand on.
#include "shell/ShellTest.h"

#include "common/Text.h"
#include "support/AppKitDriver.h"
#include "support/ChildReport.h"

using namespace veltrix;
using namespace veltrix::test;

namespace {

class StatusMenuTest : public ShellTest {
  protected:
    void SetUp() override { launch(); }

    [[nodiscard]] NSMenuItem* row(NSInteger index) const { return [menu() itemAtIndex:index]; }
};

struct Row {
    const char* title;
    const char* word;
};

constexpr Row kCommands[] = {
    {"Dashboard", "overview"},
    {"Recordings", "recordings"},
    {"Shared Links", "shares"},
    {"Start DVR", "start"},
    {"Stop DVR...", "stop"},
    {"Check Configuration", "check"},
    {"Refresh Status", "status"},
    {"Update DVR...", "upgrade"},
    {"Repair Interrupted Update...", "repair"},
};

TEST_F(StatusMenuTest, HasTwelveRowsAndDoesNotEnableThemByItself) {
    EXPECT_EQ([menu() numberOfItems], 12);
    EXPECT_FALSE((bool)[menu() autoenablesItems]);
}

TEST_F(StatusMenuTest, BeginsWithTheNineCommandsEachWithItsWord) {
    for (NSInteger i = 0; i < 9; ++i) {
        NSMenuItem* const item = row(i);
        SCOPED_TRACE(kCommands[i].title);
        EXPECT_EQ(toUtf8([item title]), kCommands[i].title);
        EXPECT_EQ(toUtf8(dynamicCast<NSString>([item representedObject])), kCommands[i].word);
        EXPECT_EQ(toUtf8(NSStringFromSelector([item action])), "command:");
        EXPECT_EQ([item target], app.get());
        EXPECT_EQ(toUtf8([item keyEquivalent]), "");
        EXPECT_TRUE((bool)[item isEnabled]);
        ASSERT_LT(static_cast<std::size_t>(i), [app menuActions].size());
        EXPECT_EQ([app menuActions][static_cast<std::size_t>(i)].get(), item);
    }
    EXPECT_EQ([app menuActions].size(), 9U);
}

TEST_F(StatusMenuTest, EndsWithSettingsAndQuitBelowASeparator) {
    EXPECT_TRUE((bool)[row(9) isSeparatorItem]);

    NSMenuItem* const settingsRow = row(10);
    EXPECT_EQ(toUtf8([settingsRow title]), "Settings...");
    EXPECT_EQ(toUtf8(NSStringFromSelector([settingsRow action])), "showSettings");
    EXPECT_EQ(toUtf8([settingsRow keyEquivalent]), ",");

    NSMenuItem* const quit = row(11);
    EXPECT_EQ(toUtf8([quit title]), "Quit Desktop App");
    EXPECT_EQ(toUtf8(NSStringFromSelector([quit action])), "quitApp");
    EXPECT_EQ(toUtf8([quit keyEquivalent]), "q");

    for (NSMenuItem* const item : {settingsRow, quit}) {
        EXPECT_EQ([item target], app.get());
        EXPECT_EQ([item representedObject], nil);
        EXPECT_EQ([item keyEquivalentModifierMask], NSEventModifierFlagCommand);
        EXPECT_TRUE((bool)[item isEnabled]);
    }
}

// --- What rows and buttons hand on ----------------------------------------------------------

// The second argument of the script that ran.
class CommandWordTest : public StatusMenuTest {
  protected:
    void SetUp() override {
        scriptsDo("report " + report_ + "\nprint {\"ok\":true,\"code\":\"ready\"}\n");
        launch();
    }

    [[nodiscard]] std::vector<std::string> scriptArguments() {
        EXPECT_TRUE(untilIdle());
        const ChildReport seen = awaitReport(report_);
        return {seen.arguments.begin() + 1, seen.arguments.end()};
    }

    [[nodiscard]] std::vector<std::string> controllerCall(const std::string& word) const {
        return {resources.folder() + "/desktop/controller.mjs", word, "--home", installation()};
    }

    const std::string report_ = resources.scratch("report");
};

TEST_F(CommandWordTest, SharedLinksInTheMenuIssuesShares) {
    ASSERT_TRUE(chooseMenuItem(menu(), @"Shared Links"));
    EXPECT_EQ(scriptArguments(), controllerCall("shares"));
}

TEST_F(CommandWordTest, SharingInTheWindowIssuesShares) {
    ASSERT_TRUE(pressButtonTitled(window(), @"Sharing"));
    EXPECT_EQ(scriptArguments(), controllerCall("shares"));
}

TEST_F(CommandWordTest, ARowWithoutAWordIssuesTheEmptyOne) {
    const auto item = adoptNS([[NSMenuItem alloc] init]);
    [app command:item];
    EXPECT_EQ(scriptArguments(), controllerCall(""));
}

TEST_F(CommandWordTest, ARowWhoseObjectIsNoStringIssuesTheEmptyWord) {
    const auto item = adoptNS([[NSMenuItem alloc] init]);
    [item setRepresentedObject:@(7)];
    [app command:item];
    EXPECT_EQ(scriptArguments(), controllerCall(""));
}

TEST_F(CommandWordTest, AButtonWithoutAnIdentifierIssuesTheEmptyWord) {
    [app buttonCommand:[NSButton buttonWithTitle:@"Nothing" target:nil action:nullptr]];
    EXPECT_EQ(scriptArguments(), controllerCall(""));
}

TEST_F(CommandWordTest, AWordThatNobodyKnowsIsHandedOnAsItIs) {
    const auto item = adoptNS([[NSMenuItem alloc] init]);
    [item setRepresentedObject:@"Status"];
    [app command:item];
    EXPECT_EQ(scriptArguments(), controllerCall("Status"));
}

}  // namespace
