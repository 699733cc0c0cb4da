// The setup session: the modal run of the setup window on the "setup" command, from its first
// event to the end of its first-run process.
#include "shell/SetupWindowTest.h"

#include "common/Text.h"
#include "shell/Keyboard.h"
#include "support/AppKitDriver.h"
#include "support/ChildReport.h"
#include "support/MethodSwap.h"
#include "support/OpenPanel.h"
#include "support/Processes.h"

#include <chrono>

#include <unistd.h>

using namespace std::chrono_literals;
using namespace veltrix;
using namespace veltrix::test;

namespace {

constexpr const char* kValidated = "Certificate validated; gateway stays stopped. Client devices "
                                   "must also trust its issuer.";
constexpr const char* kFailed = "Setup request failed. Check certificate, consent and account "
                                "approval; service was not started.";
constexpr const char* kWait = "Wait for the current setup request.";

class SetupModalTest : public SetupWindowTest {
  protected:
    void SetUp() override { launch(); }

    // The first-run process answers, and lives on after the end of its input until release().
    void firstRunOutlivesItsInput() const {
        firstRunDoes("report " + report +
                     "\nanswer-all {\"code\":\"tls_configured_stopped\"}\\n\n" + "touch " + ended +
                     "\nawait " + resources.scratch("released") + "\n");
    }
    void whenTheInputHasEnded() {
        script.when("the end of the process's input",
                    [this] { return ::access(ended.c_str(), F_OK) == 0; });
    }

    void expectIdleAfterwards() const {
        EXPECT_FALSE([app busy]);
        EXPECT_EQ([NSApp modalWindow], nil);
        for (const auto& item : [app menuActions]) {
            EXPECT_TRUE((bool)[item isEnabled]) << toUtf8([item title]);
        }
        for (const auto& control : [app controls]) {
            EXPECT_TRUE((bool)[control isEnabled]);
        }
    }

    const std::string report = resources.scratch("report");
    const std::string ended = resources.scratch("ended");
};

TEST_F(SetupModalTest, RunsTheWindowInFrontAndLeavesEverythingAsItWas) {
    [NSApp deactivate];
    whenShown();
    script.when("the keyboard", [this] { return [NSApp isActive] && [panel() isKeyWindow]; })
        .then([this] {
            EXPECT_TRUE([app busy]);
            for (const auto& item : [app menuActions]) {
                EXPECT_FALSE((bool)[item isEnabled]) << toUtf8([item title]);
            }
            for (const auto& control : [app controls]) {
                EXPECT_TRUE((bool)[control isEnabled]);
            }
            EXPECT_TRUE(controlsEnabled());
            EXPECT_EQ(said(), "DVR stays stopped during setup.");
        });
    closeAtTheEnd();
    runSession();
    expectIdleAfterwards();
    EXPECT_EQ(status(), "Service status unknown");
    EXPECT_EQ(toolTip(), "Veltrix Home DVR");
    EXPECT_EQ(settings->writes.size(), 2U);
}

TEST_F(SetupModalTest, IsOpenedByTheTlsAndAccountButton) {
    whenShown();
    closeAtTheEnd();
    @autoreleasepool {
        ASSERT_TRUE(pressButtonTitled(window(), @"TLS / Account"));
    }
    EXPECT_TRUE(script.finished());
    expectIdleAfterwards();
}

TEST_F(SetupModalTest, DoesNotOpenWhenTheSettingsAreRefused) {
    ASSERT_TRUE(typeInto([app node], @"/nonexistent/node"));
    const ModalResponder nobody([](NSWindow*) {
        ADD_FAILURE() << "a window came up";
        [NSApp stopModal];
    });
    [app perform:"setup"];
    EXPECT_EQ(status(),
              "Choose an absolute installation folder and an executable Node 22+ runtime.");
    expectIdleAfterwards();
}

TEST_F(SetupModalTest, StartsTheChosenRuntimeForTheChosenFolderOnTheFirstRequestOnly) {
    firstRunOutlivesItsInput();
    release();
    whenShown();
    script.then([this] {
        EXPECT_NE(::access(report.c_str(), F_OK), 0);
        EXPECT_TRUE(pressButtonTitled(panel(), @"Check Approval"));
    });
    whenSaid(kValidated);
    closeAtTheEnd();
    runSession();
    const ChildReport seen = awaitReport(report);
    ASSERT_EQ(seen.arguments.size(), 4U);
    EXPECT_EQ(seen.arguments[0], resources.node());
    EXPECT_EQ(seen.arguments[1], resources.folder() + "/desktop/first-run.mjs");
    EXPECT_EQ(seen.arguments[2], "--home");
    EXPECT_EQ(seen.arguments[3], installation());
}

// --- Replies during the session -------------------------------------------------------------

TEST_F(SetupModalTest, RepliesArriveWhileTheSessionRuns) {
    pressWhenShown(@"Validate TLS");
    script.then([this] { EXPECT_FALSE(anyControlEnabled() && said() == "Working..."); });
    whenSaid(kValidated);
    script.then([this] {
        EXPECT_TRUE(controlsEnabled());
        EXPECT_TRUE(pressButtonTitled(panel(), @"Check Approval"));
    });
    script.when("the second request", [this] { return requests().size() == 2; });
    script.when("the second reply", [this] { return controlsEnabled(); });
    closeAtTheEnd();
    runSession();
    expectIdleAfterwards();
}

TEST_F(SetupModalTest, ARequestThatTakesTooLongFailsWhileTheSessionRuns) {
    firstRunDoes("answer\nhang\n");
    pressWhenShown(@"Validate TLS");
    script.when("the limit", [this] { return clock.pending() == std::vector{20000ms}; });
    script.then([this] {
        EXPECT_EQ(said(), "Working...");
        clock.advance(20s);
    });
    whenSaid(kFailed);
    script.then([this] { EXPECT_TRUE(controlsEnabled()); });
    closeAtTheEnd();
    runSession();
    expectIdleAfterwards();
}

TEST_F(SetupModalTest, ARuntimeThatCannotBeStartedFailsTheRequestAndNotTheSession) {
    const std::string notARuntime = resources.script("no-runtime", "#!/nonexistent/interpreter\n");
    ASSERT_EQ(::chmod(notARuntime.c_str(), 0700), 0);
    ASSERT_TRUE(typeInto([app node], toNSString(notARuntime)));
    pressWhenShown(@"Validate TLS");
    whenSaid(kFailed);
    closeAtTheEnd();
    runSession();
    expectIdleAfterwards();
}

// --- Closing --------------------------------------------------------------------------------

TEST_F(SetupModalTest, ClosesAtOnceWhenNothingWasEverStarted) {
    whenShown();
    closeAtTheEnd();
    runSession();
    expectIdleAfterwards();
    EXPECT_FALSE(hasChildren());
}

TEST_F(SetupModalTest, DoesNotCloseWhileARequestIsUnderWay) {
    firstRunDoes("answer\nawait " + resources.scratch("released") +
                 "\nprint {\"code\":\"tls_configured_stopped\"}\\n\nanswer-all x\\n\n");
    pressWhenShown(@"Validate TLS");
    script.then([this] {
        pressCloseButton(panel());
        EXPECT_EQ(said(), kWait);
        EXPECT_TRUE((bool)[panel() isVisible]);
        EXPECT_FALSE(anyControlEnabled());
        release();
    });
    whenSaid(kValidated);
    script.then([this] { EXPECT_TRUE(controlsEnabled()); });
    closeAtTheEnd();
    runSession();
    expectIdleAfterwards();
}

TEST_F(SetupModalTest, TwoQuickClosesCloseItOnce) {
    firstRunOutlivesItsInput();
    pressWhenShown(@"Validate TLS");
    whenSaid(kValidated);
    script.then([this] {
        pressCloseButton(panel());
        EXPECT_EQ(said(), kValidated);
        pressCloseButton(panel());
        EXPECT_EQ(said(), kWait);
        EXPECT_TRUE((bool)[panel() isVisible]);
        release();
    });
    runSession();
    expectIdleAfterwards();
}

// When the window closes: is the process still there?
pid_t watched = 0;
bool thereAtTheEnd = false;
using Close = void (*)(id, SEL);
Close closeWindow;

void noteClose(id self, SEL command) {
    if (dynamicCast<SetupWindow>((id)[self delegate]) != nil) {
        thereAtTheEnd = processExists(watched);
    }
    closeWindow(self, command);
}

TEST_F(SetupModalTest, TheWindowClosesOnlyAfterTheProcessHasGone) {
    const MethodSwap swap([NSWindow class], @selector(close), noteClose);
    closeWindow = swap.original<Close>();
    firstRunOutlivesItsInput();
    pressWhenShown(@"Validate TLS");
    whenSaid(kValidated);
    script.then([this] {
        watched = awaitReport(report).pid;
        thereAtTheEnd = true;
        pressCloseButton(panel());
    });
    whenTheInputHasEnded();
    script.then([this] {
        EXPECT_TRUE(processExists(watched));
        EXPECT_TRUE((bool)[panel() isVisible]);
        EXPECT_TRUE([app busy]);
        EXPECT_EQ(clock.pending(), std::vector{5000ms});
        release();
    });
    runSession();
    EXPECT_FALSE(thereAtTheEnd);
    EXPECT_FALSE(processExists(watched));
    expectIdleAfterwards();
    EXPECT_TRUE(clock.pending().empty());
}

TEST_F(SetupModalTest, AProcessThatDoesNotEndByItselfIsAskedToAfterFiveSeconds) {
    firstRunDoes("answer-all {\"code\":\"tls_configured_stopped\"}\\n\nhang\n");
    pressWhenShown(@"Validate TLS");
    whenSaid(kValidated);
    script.then([this] { pressCloseButton(panel()); });
    script.when("the limit", [this] { return clock.pending() == std::vector{5000ms}; });
    script.then([this] {
        clock.advance(4999ms);
        EXPECT_TRUE((bool)[panel() isVisible]);
        clock.advance(1ms);
    });
    runSession();
    expectIdleAfterwards();
    EXPECT_FALSE(hasChildren());
}

TEST_F(SetupModalTest, ClosingEmptiesThePasswordAtOnceAndLocksNothing) {
    const TempFolder folder;
    const std::string file = folder.write("key.pem", "");
    firstRunOutlivesItsInput();
    pressWhenShown(@"Validate TLS");
    whenSaid(kValidated);
    script.then([this] {
        EXPECT_TRUE(typeInto([setup() username], @"sam"));
        EXPECT_TRUE(typeInto([setup() password], @"fifteen bytes!!"));
        pressCloseButton(panel());
        EXPECT_EQ(textOf([setup() password]), "");
        EXPECT_EQ(textOf([setup() username]), "sam");
    });
    whenTheInputHasEnded();
    script.then([this, file] {
        EXPECT_TRUE(controlsEnabled());
        // The setup buttons do nothing, everything else still works.
        EXPECT_TRUE(pressButtonTitled(panel(), @"Check Approval"));
        EXPECT_TRUE(press([setup() trustProxy]));
        EXPECT_EQ([[setup() trustProxy] state], NSControlStateValueOn);
        EXPECT_TRUE(pressButtonTitled(panel(), @"Manage Account"));
        const ModalResponder responder(
            [file](NSWindow* open) { EXPECT_TRUE(chooseInOpenPanel(open, toNSString(file))); });
        EXPECT_TRUE(press(buttonIdentified(panel(), @"key")));
        EXPECT_TRUE(responder.responded());
        EXPECT_EQ(textOf([setup() key]), file);
        EXPECT_EQ(said(), kValidated);
        release();
    });
    runSession();
    expectIdleAfterwards();
    EXPECT_EQ(requests().size(), 1U);
    EXPECT_EQ(opened.list().size(), 1U);
}

TEST_F(SetupModalTest, EscapeDoesNotCloseIt) {
    whenShown();
    script.when("the keyboard", [this] { return (bool)[panel() isKeyWindow]; });
    script.then([this] {
        // Behind Escape, in the same queue, comes something that shows.
        [panel() makeFirstResponder:[setup() username]];
        pressKey(panel(), @"\033");
        pressKey(panel(), @"s");
    });
    script.when("the next key", [this] {
        return [[[[setup() username] currentEditor] string] isEqualToString:@"s"] ||
               textOf([setup() username]) == "s" || ![panel() isVisible];
    });
    script.then([this] {
        EXPECT_TRUE((bool)[panel() isVisible]);
        EXPECT_TRUE([app busy]);
    });
    closeAtTheEnd();
    runSession();
    expectIdleAfterwards();
}

TEST_F(SetupModalTest, CommandWAsksLikeTheCloseButton) {
    whenShown();
    script.when("the keyboard", [this] { return (bool)[panel() isKeyWindow]; });
    script.then([this] { pressKey(panel(), @"w", NSEventModifierFlagCommand); });
    runSession();
    expectIdleAfterwards();
}

TEST_F(SetupModalTest, CommandVPastesIntoEveryField) {
    putOnPasteboard(@"pasted text");
    whenShown();
    script.when("the keyboard", [this] { return (bool)[panel() isKeyWindow]; });
    using Field = std::function<NSTextField*()>;
    const Field kFields[] = {[this] { return [setup() certificate]; },
                             [this] { return [setup() key]; }, [this] { return [setup() ca]; },
                             [this] { return [setup() username]; },
                             [this]() -> NSTextField* { return [setup() password]; }};
    for (const Field& field : kFields) {
        script.then([this, field] {
            beginTyping(field(), @"");
            pressKey(panel(), @"v", NSEventModifierFlagCommand);
        });
        script.when("the pasted text", [field] {
            [field() validateEditing];
            return textOf(field()) == "pasted text";
        });
    }
    closeAtTheEnd();
    runSession();
}

// --- The rest of the application meanwhile --------------------------------------------------

TEST_F(SetupModalTest, TheStatusMenuIsInertButForSettingsAndQuit) {
    scriptsDo("touch " + resources.scratch("ran") + "\n");
    whenShown();
    script.then([this] {
        SetupWindow* const first = setup();
        for (const auto& item : [app menuActions]) {
            EXPECT_FALSE(chooseMenuItem(menu(), [item title]));
            [app command:item];  // as if it had been enabled
            EXPECT_EQ(setup(), first) << toUtf8([item title]);
        }
        [app perform:"setup"];
        [app perform:"save"];
        EXPECT_EQ(setup(), first);
        EXPECT_EQ(status(), "Service status unknown");

        EXPECT_TRUE(chooseMenuItem(menu(), @"Settings..."));
        EXPECT_TRUE((bool)[panel() isVisible]);
        EXPECT_TRUE(chooseMenuItem(menu(), @"Quit Desktop App"));
        EXPECT_EQ(status(), "Wait for the current action before quitting.");
        EXPECT_TRUE(app.get()->_terminations.empty());
        [NSApp terminate:nil];
        EXPECT_EQ(app.get()->_terminations, std::vector<bool>{false});
    });
    closeAtTheEnd();
    runSession();
    expectIdleAfterwards();
    EXPECT_NE(::access(resources.scratch("ran").c_str(), F_OK), 0);
    EXPECT_EQ(settings->writes.size(), 2U);
}

TEST_F(SetupModalTest, AfterTheSessionTheNextCommandRuns) {
    whenShown();
    closeAtTheEnd();
    runSession();
    performToEnd("status");
    EXPECT_EQ(status(), "Ready.");
}

// --- One window after another ---------------------------------------------------------------

TEST_F(SetupModalTest, AFreshWindowRemembersNothing) {
    firstRunReplies(R"({"code":"enrollment_paired"})");
    pressWhenShown(@"Resume Saved Approval");
    whenSaid("Saved account approval validated. You can set the DVR login.");
    script.then([this] {
        for (NSTextField* field : {[setup() certificate],
                                   [setup() key],
                                   [setup() ca],
                                   [setup() username],
                                   (NSTextField*)[setup() password]}) {
            EXPECT_TRUE(typeInto(field, @"fifteen bytes!!"));
        }
        EXPECT_TRUE(press([setup() trustCA]));
        EXPECT_TRUE(press([setup() trustProxy]));
    });
    closeAtTheEnd();
    runSession();

    whenShown();
    script.then([this] {
        for (NSTextField* field : {[setup() certificate],
                                   [setup() key],
                                   [setup() ca],
                                   [setup() username],
                                   (NSTextField*)[setup() password]}) {
            EXPECT_EQ(textOf(field), "") << toUtf8([field accessibilityLabel]);
        }
        EXPECT_EQ([[setup() trustCA] state], NSControlStateValueOff);
        EXPECT_EQ([[setup() trustProxy] state], NSControlStateValueOff);
        EXPECT_EQ(said(), "DVR stays stopped during setup.");
        // The approval of the earlier window does not count in this one.
        EXPECT_TRUE(press([setup() trustProxy]));
        EXPECT_TRUE(typeInto([setup() password], @"fifteen bytes!!"));
        EXPECT_TRUE(pressButtonTitled(panel(), @"Set DVR Login"));
        EXPECT_EQ(said(), "Account approval, loopback gateway consent and a 15-128-byte password "
                          "are required.");
    });
    closeAtTheEnd();
    runSession();
    EXPECT_EQ(requests().size(), 1U);
}

int freed = 0;
using Dealloc = void (*)(id, SEL);
Dealloc dealloc;

void noteDealloc(id self, SEL command) {
    ++freed;
    dealloc(self, command);
}

TEST_F(SetupModalTest, NothingOfTheWindowIsLeftAfterwards) {
    const MethodSwap swap([SetupWindow class], NSSelectorFromString(@"dealloc"), noteDealloc);
    dealloc = swap.original<Dealloc>();
    freed = 0;
    pressWhenShown(@"Validate TLS");
    whenSaid(kValidated);
    closeAtTheEnd();
    runSession();
    EXPECT_TRUE(pumpUntil([] { return freed == 1; }));

    whenShown();
    closeAtTheEnd();
    runSession();
    EXPECT_TRUE(pumpUntil([] { return freed == 2; }));
    EXPECT_FALSE(hasChildren());
}

}  // namespace
