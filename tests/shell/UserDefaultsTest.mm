// The desktop settings in the real user defaults, from one launch to the next. The test program has
// defaults of its own.
#include "shell/ShellTest.h"

#include "app/UserDefaultsStore.h"
#include "common/Text.h"
#include "support/AppKitDriver.h"
#include "support/LibraryLeak.h"

using namespace veltrix;
using namespace veltrix::test;

namespace {

class UserDefaultsTest : public ShellTest {
  protected:
    UserDefaultsTest() { removeBoth(); }
    ~UserDefaultsTest() override { removeBoth(); }

    static NSUserDefaults* defaults() { return [NSUserDefaults standardUserDefaults]; }

    static void removeBoth() {
        [defaults() removeObjectForKey:@"installationHome"];
        [defaults() removeObjectForKey:@"nodeExecutable"];
        [defaults() synchronize];
    }

    // What a process that starts now would find.
    static void forgetWhatIsInMemory() {
        [defaults() synchronize];
        const LibraryLeak leak;  // GNUstep keeps the path of the defaults that it lets go
        [NSUserDefaults resetStandardUserDefaults];
    }

    [[nodiscard]] RetainPtr<RecordingApp> launched() {
        DesktopEnvironment made = environment();
        made.settings = std::make_shared<UserDefaultsStore>();
        RetainPtr<RecordingApp> other =
            adoptNS([[RecordingApp alloc] initWithEnvironment:std::move(made)]);
        [other applicationDidFinishLaunching:[NSNotification notificationWithName:@"launched"
                                                                           object:NSApp]];
        [[NSStatusBar systemStatusBar] removeStatusItem:[other statusItem]];
        return other;
    }
};

TEST_F(UserDefaultsTest, WhatIsSavedIsThereAtTheNextLaunch) {
    const std::string folder = resources.scratch("Ordner é");
    {
        const auto first = launched();
        ASSERT_TRUE(typeInto([first home], toNSString(folder)));
        ASSERT_TRUE(typeInto([first node], @"/bin/sh"));
        [first perform:"save"];
        EXPECT_EQ(textOf([first status]), "Desktop settings saved. Service unchanged.");
        [[first window] orderOut:nil];
    }
    EXPECT_EQ(toUtf8([defaults() stringForKey:@"installationHome"]), folder);
    EXPECT_EQ(toUtf8([defaults() stringForKey:@"nodeExecutable"]), "/bin/sh");

    forgetWhatIsInMemory();
    const auto second = launched();
    EXPECT_EQ(textOf([second home]), folder);
    EXPECT_EQ(textOf([second storage]), folder + "/data");
    [[second window] orderOut:nil];
}

TEST_F(UserDefaultsTest, ARefusedSaveLeavesBothKeysAsTheyWere) {
    UserDefaultsStore().write("installationHome", "/before");
    const auto only = launched();
    ASSERT_TRUE(typeInto([only home], @"/after"));
    ASSERT_TRUE(typeInto([only node], @"/nonexistent/node"));
    [only perform:"save"];
    EXPECT_EQ(UserDefaultsStore().read("installationHome"), "/before");
    EXPECT_EQ(UserDefaultsStore().read("nodeExecutable"), std::nullopt);
    [[only window] orderOut:nil];
}

TEST_F(UserDefaultsTest, AValueThatIsNoStringCountsAsAbsent) {
    [defaults() setObject:@[ @"/list" ] forKey:@"installationHome"];
    EXPECT_EQ(UserDefaultsStore().read("installationHome"), std::nullopt);
}

}  // namespace
