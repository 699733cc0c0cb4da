// The file in which GNUstep keeps the settings, and what somebody may have put in its place. On
// macOS the files are the system's own business.
#include "shell/ShellTest.h"

#include "app/UserDefaultsStore.h"
#include "common/Text.h"
#include "support/LibraryLeak.h"

#include <filesystem>
#include <fstream>

using namespace veltrix;
using namespace veltrix::test;

namespace fs = std::filesystem;

namespace {

class SettingsFileTest : public ShellTest {
  protected:
    SettingsFileTest() { forget(); }
    ~SettingsFileTest() override { forget(); }

    // As if nothing had ever been stored.
    void forget() {
        fs::remove_all(file);
        reload();
    }

    // What a process that starts now finds.
    static void reload() {
        const LibraryLeak leak;  // GNUstep keeps the path of the defaults that it lets go
        [NSUserDefaults resetStandardUserDefaults];
    }

    static bool store(const std::string& home) {
        UserDefaultsStore defaults;
        return storeSettings(defaults, home, "/bin/sh");
    }
    static std::optional<std::string> stored() {
        return UserDefaultsStore().read(kInstallationHomeKey);
    }

    // A settings file of somebody else's, with the same keys.
    [[nodiscard]] std::string foreignFile() const {
        const std::string path = resources.scratch("foreign.plist");
        store("/foreign");
        fs::rename(file, path);
        reload();
        return path;
    }

    // The link has given way to a file of ours that holds what was stored last.
    void expectReplacedByOurs() const {
        EXPECT_EQ(fs::symlink_status(file).type(), fs::file_type::regular);
        EXPECT_EQ(fs::status(file).permissions(), fs::perms::owner_read | fs::perms::owner_write);
        reload();
        EXPECT_EQ(stored(), "/ours");
    }

    const std::string file = toUtf8([GSDefaultsRootForUser(NSUserName())
        stringByAppendingPathComponent:[[[NSProcessInfo processInfo] processName]
                                           stringByAppendingPathExtension:@"plist"]]);
};

TEST_F(SettingsFileTest, HoldsBothSettingsWhenTheWindowSaysThatTheyAreSaved) {
    ASSERT_TRUE(store("/ours"));
    const std::string text = contentsOf(file);
    EXPECT_NE(text.find("<string>/ours</string>"), std::string::npos) << text;
    EXPECT_NE(text.find("<string>/bin/sh</string>"), std::string::npos) << text;
}

TEST_F(SettingsFileTest, ThatIsALinkIsReadButNeverWrittenThrough) {
    const std::string foreign = foreignFile();
    const std::string before = contentsOf(foreign);
    fs::create_symlink(foreign, file);
    reload();
    EXPECT_EQ(stored(), "/foreign");
    ASSERT_TRUE(store("/ours"));
    EXPECT_EQ(contentsOf(foreign), before);
    expectReplacedByOurs();
}

TEST_F(SettingsFileTest, ThatIsALinkToAFileOfAnotherKindLeavesThatAsItWas) {
    const std::string secret = resources.scratch("secret");
    std::ofstream(secret) << "not a list of settings";
    fs::permissions(secret, fs::perms::owner_read);
    fs::create_symlink(secret, file);
    reload();
    EXPECT_EQ(stored(), std::nullopt);
    {
        const LibraryLeak leak;  // GNUstep's reader of property lists loses what it cannot parse
        ASSERT_TRUE(store("/ours"));
    }
    EXPECT_EQ(contentsOf(secret), "not a list of settings");
    EXPECT_EQ(fs::status(secret).permissions(), fs::perms::owner_read);
    expectReplacedByOurs();
}

TEST_F(SettingsFileTest, ThatIsALinkToNothingMakesNothingThere) {
    const std::string nothing = resources.scratch("nothing");
    fs::create_symlink(nothing, file);
    reload();
    EXPECT_EQ(stored(), std::nullopt);
    ASSERT_TRUE(store("/ours"));
    EXPECT_FALSE(fs::exists(nothing));
    expectReplacedByOurs();
}

TEST_F(SettingsFileTest, ThatIsALinkToItselfIsReplaced) {
    fs::create_symlink(file, file);
    reload();
    EXPECT_EQ(stored(), std::nullopt);
    ASSERT_TRUE(store("/ours"));
    expectReplacedByOurs();
}

TEST_F(SettingsFileTest, ThatIsALinkToAFolderLeavesTheFolderEmpty) {
    const std::string folder = resources.scratch("folder");
    fs::create_directory(folder);
    fs::create_symlink(folder, file);
    reload();
    EXPECT_EQ(stored(), std::nullopt);
    ASSERT_TRUE(store("/ours"));
    EXPECT_TRUE(fs::is_empty(folder));
    expectReplacedByOurs();
}

}  // namespace
