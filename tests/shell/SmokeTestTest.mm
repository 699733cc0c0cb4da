// The self-test: when it is asked for, what it does with the window and what it prints.
#include "app/SmokeTest.h"
#include "shell/ShellTest.h"

#include "common/Text.h"
#include "support/AppKitDriver.h"

#include <chrono>

#include <unistd.h>

using namespace std::chrono_literals;
using namespace veltrix;
using namespace veltrix::test;

namespace {

using Arguments = std::vector<std::string>;

TEST(SmokeTestArgumentsTest, AskForItWithExactlyAnOptionAndAPath) {
    EXPECT_EQ(smokeTestOutput(Arguments{"program", "--qa-smoke", "/tmp/shot.png"}),
              "/tmp/shot.png");
}

TEST(SmokeTestArgumentsTest, AskForNothingOtherwise) {
    for (const Arguments& arguments :
         {Arguments{}, Arguments{"program"}, Arguments{"program", "--qa-smoke"},
          Arguments{"program", "--qa-smoke", "/tmp/shot.png", "more"},
          Arguments{"program", "/tmp/shot.png", "--qa-smoke"},
          Arguments{"program", "--QA-SMOKE", "/tmp/shot.png"},
          Arguments{"program", "--qa-smoke=1", "/tmp/shot.png"}}) {
        EXPECT_EQ(smokeTestOutput(arguments), std::nullopt) << arguments.size();
    }
}

SmokeTestFindings allWell() {
    SmokeTestFindings findings;
    findings.menuEntries = true;
    findings.visibleAfterHide = false;
    findings.visibleNow = true;
    findings.statusAfterCommand = "... an executable Node 22+ runtime.";
    return findings;
}

constexpr const char* kSuccess = "{\"nativeWindow\":true,\"menuEntries\":true,\"hideRestore\":true,"
                                 "\"missingRuntimeRejected\":true,\"serviceStarted\":false}\n";
constexpr const char* kFailure = "{\"nativeWindow\":false}\n";

TEST(SmokeTestLineTest, IsTheOneFixedLineWhenAllIsWell) {
    EXPECT_EQ(smokeTestLine(allWell()), kSuccess);
}

TEST(SmokeTestLineTest, IsTheOtherWhenAnyFactIsMissing) {
    EXPECT_EQ(smokeTestLine(SmokeTestFindings{}), kFailure);
    SmokeTestFindings findings = allWell();
    findings.menuEntries = false;
    EXPECT_EQ(smokeTestLine(findings), kFailure);
    findings = allWell();
    findings.busy = true;
    EXPECT_EQ(smokeTestLine(findings), kFailure);
    findings = allWell();
    findings.visibleAfterHide = true;
    EXPECT_EQ(smokeTestLine(findings), kFailure);
    findings = allWell();
    findings.visibleNow = false;
    EXPECT_EQ(smokeTestLine(findings), kFailure);
    findings = allWell();
    findings.statusAfterCommand = "Working...";
    EXPECT_EQ(smokeTestLine(findings), kFailure);
}

class SmokeTestTest : public ShellTest {
  protected:
    void launchFor(const std::string& output) {
        arguments = {"veltrix", "--qa-smoke", output};
        launch();
    }

    // Lets the second pass; what was printed meanwhile.
    [[nodiscard]] std::string printedAfterASecond() {
        ::testing::internal::CaptureStdout();
        clock.advance(1s);
        EXPECT_TRUE(pumpUntil([this] { return !app.get()->_terminations.empty(); }));
        return ::testing::internal::GetCapturedStdout();
    }
};

TEST_F(SmokeTestTest, ShowsItsOwnTextsAndStoresNothing) {
    settings->values.emplace("nodeExecutable", "/opt/node");
    launchFor(resources.scratch("shot.png"));
    EXPECT_EQ(textOf([app home]), "/tmp/veltrix-desktop-qa/home");
    EXPECT_EQ(textOf([app storage]), "/tmp/veltrix-desktop-qa/recordings");
    EXPECT_EQ(textOf([app node]), "/bundled/runtime/bin/node");
    EXPECT_EQ(textOf([app origin]), toUtf8([[app origin] placeholderString]));
    EXPECT_TRUE(settings->writes.empty());
    EXPECT_EQ(clock.pending(), std::vector<std::chrono::milliseconds>{1000ms});
    static_cast<void>(printedAfterASecond());
}

TEST_F(SmokeTestTest, PrintsItsLineLeavesAPictureAndAsksToTerminate) {
    const std::string output = resources.scratch("shot.png");
    launchFor(output);
    clock.advance(999ms);
    ASSERT_TRUE(pumpUntil([this] { return (bool)[window() isVisible]; }));
    EXPECT_NE(::access(output.c_str(), F_OK), 0);

    ::testing::internal::CaptureStdout();
    clock.advance(1ms);
    EXPECT_TRUE(pumpUntil([this] { return !app.get()->_terminations.empty(); }));
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), kSuccess);
    EXPECT_EQ(app.get()->_terminations, std::vector<bool>{true});
    EXPECT_EQ(status(),
              "Choose an absolute installation folder and an executable Node 22+ runtime.");
    EXPECT_TRUE((bool)[window() isVisible]);
    EXPECT_TRUE(settings->writes.empty());

    NSBitmapImageRep* const picture =
        [NSBitmapImageRep imageRepWithData:[NSData dataWithContentsOfFile:toNSString(output)]];
    EXPECT_EQ([picture pixelsWide] * 640, [picture pixelsHigh] * 760);
    EXPECT_GE([picture pixelsWide], 760);
}

TEST_F(SmokeTestTest, FailsWhenAMenuEntryIsMissing) {
    launchFor(resources.scratch("shot.png"));
    [menu() removeItem:[menu() itemWithTitle:@"Shared Links"]];
    EXPECT_EQ(printedAfterASecond(), kFailure);
}

TEST_F(SmokeTestTest, FailsWhenTheRuntimeIsThereAfterAll) {
    launchFor(resources.scratch("shot.png"));
    [[app node] setStringValue:toNSString(resources.node())];
    [[app home] setStringValue:toNSString(installation())];
    scriptsHold(R"({"ok":true,"code":"running"})");
    ::testing::internal::CaptureStdout();
    clock.advance(1s);
    EXPECT_TRUE(pumpUntil([this] { return !app.get()->_terminations.empty(); }));
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), kFailure);
    EXPECT_EQ(app.get()->_terminations, std::vector<bool>{false});
}

TEST_F(SmokeTestTest, DoesNotHappenWithoutItsArguments) {
    for (const Arguments& given :
         {Arguments{"veltrix", "--qa-smoke"},
          Arguments{"veltrix", resources.scratch("shot.png"), "--qa-smoke"},
          Arguments{"veltrix", "--qa-smoke", resources.scratch("shot.png"), "more"}}) {
        DesktopEnvironment made = environment();
        made.arguments = given;
        const auto other = adoptNS([[RecordingApp alloc] initWithEnvironment:std::move(made)]);
        [other applicationDidFinishLaunching:[NSNotification notificationWithName:@"launched"
                                                                           object:NSApp]];
        EXPECT_TRUE(clock.pending().empty());
        EXPECT_EQ(textOf([other home]), installation());
        [[NSStatusBar systemStatusBar] removeStatusItem:[other statusItem]];
        [[other window] orderOut:nil];
    }
}

using SmokeTestDeathTest = SmokeTestTest;

TEST_F(SmokeTestDeathTest, EndsTheProcessWithTwoWhenThePictureCannotBeWritten) {
    const auto fail = [this] {
        launchFor("/nonexistent/folder/shot.png");
        clock.advance(1s);
        static_cast<void>(pumpUntil([] { return false; }));
    };
    EXPECT_EXIT(fail(), ::testing::ExitedWithCode(2), "");
}

}  // namespace
