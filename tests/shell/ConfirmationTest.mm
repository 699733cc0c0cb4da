// The questions that are asked before a risky command, on screen.
#include "shell/ShellTest.h"

#include "common/Text.h"
#include "shell/Keyboard.h"
#include "support/AppKitDriver.h"

#include <algorithm>
#include <filesystem>

#include <unistd.h>

using namespace veltrix;
using namespace veltrix::test;

namespace {

struct Question {
    const char* word;
    const char* message;
    const char* information;
    const char* safe;
    const char* proceed;
};

constexpr const char* kUpdateInformation =
    "Stop DVR and close account setup first. Application/runtime files may be replaced; "
    "configuration and recordings are preserved. No service starts automatically.";

constexpr Question kQuestions[] = {
    {"install", "Install DVR for this account?",
     "Bundled runtime and server files will be installed. Existing installations are not "
     "replaced. The service stays stopped. HTTPS proxy and account authorization are separate.",
     "Cancel", "Install"},
    {"start", "Start DVR?",
     "DVR listens on all network interfaces at port 3000. Its configured HTTPS gateway also "
     "starts when present. No firewall or router rules will be changed.",
     "Cancel", "Start"},
    {"stop", "Stop DVR?", "Active recordings may be interrupted. Saved recordings are retained.",
     "Keep Running", "Stop DVR"},
    {"upgrade", "Update DVR?", kUpdateInformation, "Cancel", "Continue"},
    {"repair", "Repair Interrupted Update?", kUpdateInformation, "Cancel", "Continue"},
};

// The answer buttons of an alert, in the order in which they were added.
std::vector<std::string> answers(NSWindow* alert) {
    std::vector<NSButton*> buttons;
    findView([alert contentView], [&buttons](NSView* view) {
        NSButton* const button = dynamicCast<NSButton>(view);
        if (button != nil && [button tag] >= NSAlertFirstButtonReturn) {
            buttons.push_back(button);
        }
        return false;
    });
    std::sort(buttons.begin(), buttons.end(),
              [](NSButton* a, NSButton* b) { return [a tag] < [b tag]; });
    std::vector<std::string> titles;
    for (NSButton* button : buttons) {
        titles.push_back(toUtf8([button title]));
    }
    return titles;
}

class ConfirmationTest : public ShellTest, public ::testing::WithParamInterface<Question> {
  protected:
    void SetUp() override {
        scriptsDo("touch " + ran_ + "\nprint {\"ok\":true,\"code\":\"ready\"}\n");
        launch();
    }

    [[nodiscard]] const Question& question() const { return GetParam(); }
    [[nodiscard]] bool hasRun() const { return ::access(ran_.c_str(), F_OK) == 0; }

    // Issues the command while somebody answers its alert; false if there was none.
    [[nodiscard]] bool answer(std::function<void(NSWindow*)> respond) {
        const ModalResponder responder(std::move(respond));
        [app perform:question().word];
        return responder.responded();
    }

    void expectDeclinedWithoutATrace() {
        EXPECT_FALSE([app busy]);
        EXPECT_EQ(status(), "Service status unknown");
        EXPECT_EQ(toolTip(), "Veltrix Home DVR");
        for (const auto& control : [app controls]) {
            EXPECT_TRUE((bool)[control isEnabled]);
        }
        EXPECT_EQ([NSApp modalWindow], nil);
        EXPECT_FALSE(hasRun());
    }

  private:
    const std::string ran_ = resources.scratch("ran");
};

std::string nameOf(const ::testing::TestParamInfo<Question>& info) {
    return info.param.word;
}

INSTANTIATE_TEST_SUITE_P(Every, ConfirmationTest, ::testing::ValuesIn(kQuestions), nameOf);

TEST_P(ConfirmationTest, SaysWhatWillHappenAndOffersTheSafeAnswerFirst) {
    EXPECT_TRUE(answer([this](NSWindow* alert) {
        EXPECT_NE(labelSaying(alert, toNSString(question().message)), nil);
        EXPECT_NE(labelSaying(alert, toNSString(question().information)), nil);
        EXPECT_EQ(answers(alert), (std::vector<std::string>{question().safe, question().proceed}));
        EXPECT_FALSE([app busy]);
        for (const auto& item : [app menuActions]) {
            EXPECT_TRUE((bool)[item isEnabled]);
        }
        pressButtonTitled(alert, toNSString(question().safe));
    }));
    expectDeclinedWithoutATrace();
}

TEST_P(ConfirmationTest, ReturnIsTheSafeAnswer) {
    EXPECT_TRUE(answer([](NSWindow* alert) { pressKey(alert, @"\r"); }));
    expectDeclinedWithoutATrace();
}

TEST_P(ConfirmationTest, EscapeIsTheSafeAnswer) {
    EXPECT_TRUE(answer([](NSWindow* alert) {
        pressKey(alert, @"\033");
        // Where Escape is no answer these are: the second button.
        pressKey(alert, @"\t");
        pressKey(alert, @" ");
    }));
    expectDeclinedWithoutATrace();
}

TEST_P(ConfirmationTest, TheSecondButtonProceeds) {
    EXPECT_TRUE(answer(
        [this](NSWindow* alert) { pressButtonTitled(alert, toNSString(question().proceed)); }));
    EXPECT_TRUE([app busy]);
    EXPECT_EQ(status(), "Working...");
    EXPECT_TRUE(untilIdle());
    EXPECT_TRUE(hasRun());
    EXPECT_EQ(status(), "Ready.");
}

TEST_P(ConfirmationTest, FindsTheApplicationActiveAndInFrontEvenIfItWasNot) {
    [window() orderOut:nil];
    [NSApp deactivate];
    ASSERT_TRUE(pumpUntil([] { return ![NSApp isActive]; }));
    EXPECT_TRUE(answer([this](NSWindow* alert) {
        EXPECT_TRUE((bool)[NSApp isActive]);
        EXPECT_TRUE((bool)[alert isKeyWindow]);
        pressButtonTitled(alert, toNSString(question().safe));
    }));
    // Declined: nothing else has come up.
    EXPECT_FALSE((bool)[window() isVisible]);
}

TEST_P(ConfirmationTest, ASecondCommandThatGetsUnderWayMeanwhileLeavesNoRoomForThisOne) {
    scriptsHold(R"({"ok":true,"code":"running"})");
    EXPECT_TRUE(answer([this](NSWindow* alert) {
        chooseMenuItem(menu(), @"Refresh Status");
        EXPECT_TRUE([app busy]);
        pressButtonTitled(alert, toNSString(question().proceed));
    }));
    EXPECT_TRUE([app busy]);
    release();
    EXPECT_TRUE(untilIdle());
    EXPECT_EQ(status(), "DVR running and healthy.");
    EXPECT_FALSE(hasRun());
}

// --- What is asked, and what is not ---------------------------------------------------------

class QuestionTest : public ShellTest {
  protected:
    void SetUp() override { launch(); }
};

struct Surface {
    NSString* title;
    const char* message;
};

TEST_F(QuestionTest, RiskyMenuItemsAsk) {
    const Surface kItems[] = {{@"Start DVR", "Start DVR?"},
                              {@"Stop DVR...", "Stop DVR?"},
                              {@"Update DVR...", "Update DVR?"},
                              {@"Repair Interrupted Update...", "Repair Interrupted Update?"}};
    for (const Surface& item : kItems) {
        std::string asked;
        const ModalResponder responder([&asked, &item](NSWindow* alert) {
            if (labelSaying(alert, toNSString(item.message)) != nil) {
                asked = item.message;
            }
            pressKey(alert, @"\r");
        });
        EXPECT_TRUE(chooseMenuItem(menu(), item.title));
        EXPECT_EQ(asked, item.message);
        EXPECT_FALSE([app busy]);
    }
}

TEST_F(QuestionTest, RiskyButtonsAsk) {
    const Surface kButtons[] = {{@"Start DVR", "Start DVR?"},
                                {@"Stop DVR", "Stop DVR?"},
                                {@"Install DVR", "Install DVR for this account?"}};
    for (const Surface& button : kButtons) {
        std::string asked;
        const ModalResponder responder([&asked, &button](NSWindow* alert) {
            if (labelSaying(alert, toNSString(button.message)) != nil) {
                asked = button.message;
            }
            pressKey(alert, @"\r");
        });
        EXPECT_TRUE(pressButtonTitled(window(), button.title));
        EXPECT_EQ(asked, button.message);
        EXPECT_FALSE([app busy]);
    }
}

TEST_F(QuestionTest, HarmlessCommandsDoNotAsk) {
    for (const char* const word :
         {"status", "check", "overview", "recordings", "shares", "configuration", "save", ""}) {
        const ModalResponder responder([](NSWindow* alert) { pressKey(alert, @"\r"); });
        performToEnd(word);
        EXPECT_FALSE(responder.responded()) << word;
    }
}

TEST_F(QuestionTest, RefusedSettingsAreSaidBeforeAnythingIsAsked) {
    ASSERT_TRUE(typeInto([app node], @"/nonexistent/node"));
    for (const char* const word : {"install", "start", "stop"}) {
        const ModalResponder responder([](NSWindow* alert) { pressKey(alert, @"\r"); });
        [app perform:word];
        EXPECT_FALSE(responder.responded()) << word;
        EXPECT_EQ(status(),
                  "Choose an absolute installation folder and an executable Node 22+ runtime.");
    }
}

class BundleCheckTest : public QuestionTest {
  protected:
    void expectOpenTheCompleteBundle(const char* word) {
        [[app status] setStringValue:@""];
        [window() orderOut:nil];
        const ModalResponder responder([](NSWindow* alert) { pressKey(alert, @"\r"); });
        [app perform:word];
        EXPECT_FALSE(responder.responded());
        EXPECT_EQ(status(), "Open the complete bundle to update or repair this installation.");
        EXPECT_TRUE((bool)[window() isVisible]);
        EXPECT_TRUE(settings->writes.empty());
        EXPECT_FALSE([app busy]);
    }
};

TEST_F(BundleCheckTest, AnUpdateOfAFolderThatIsNoPathIsRefusedWithoutAQuestion) {
    for (NSString* const folder : {@"DVR", @"/with\"quote", @"/with\ttab", @""}) {
        [[app home] setStringValue:folder];
        expectOpenTheCompleteBundle("upgrade");
        expectOpenTheCompleteBundle("repair");
    }
}

TEST_F(BundleCheckTest, AnUpdateWithoutTheBundledRuntimeIsRefusedWithoutAQuestion) {
    std::filesystem::remove(resources.node());
    expectOpenTheCompleteBundle("upgrade");
    expectOpenTheCompleteBundle("repair");
}

TEST_F(BundleCheckTest, AnUpdateNeitherStoresNorLooksAtTheNodeField) {
    ASSERT_TRUE(typeInto([app node], @"not even a path"));
    const ModalResponder responder([](NSWindow* alert) { pressButtonTitled(alert, @"Continue"); });
    performToEnd("upgrade");
    EXPECT_TRUE(responder.responded());
    EXPECT_EQ(status(), "Ready.");
    EXPECT_TRUE(settings->writes.empty());
    EXPECT_EQ(textOf([app node]), "not even a path");
}

}  // namespace
