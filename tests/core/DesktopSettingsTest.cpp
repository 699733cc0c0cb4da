#include "app/DesktopSettings.h"

#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <map>
#include <utility>
#include <vector>

namespace veltrix::test {
namespace {

using Writes = std::vector<std::pair<std::string, std::string>>;

class RecordingStore final : public SettingsStore {
  public:
    [[nodiscard]] std::optional<std::string> read(std::string_view key) const override {
        const auto found = values.find(key);
        return found == values.end() ? std::nullopt : std::optional(found->second);
    }
    void write(std::string_view key, std::string_view value) override {
        writes.emplace_back(key, value);
        values.insert_or_assign(std::string(key), std::string(value));
    }
    void flush() override { flushed.push_back(writes.size()); }

    std::map<std::string, std::string, std::less<>> values;
    Writes writes;
    std::vector<std::size_t> flushed;  // how much had been written each time
};

class DesktopSettings : public testing::Test {
  protected:
    [[nodiscard]] InitialFields load() const { return loadFields(store, userHome, bundledRuntime); }

    const TempFolder folder;
    const std::string userHome = folder.makeFolder("sam");
    const std::string defaultHome = userHome + "/Library/Application Support/VeltrixHomeDVR";
    const std::string bundledRuntime = folder.write("Resources/node", "", 0700);
    const std::string otherNode = folder.write("bin/node", "", 0700);
    RecordingStore store;
};

TEST_F(DesktopSettings, HaveTheseNamesAndTexts) {
    EXPECT_EQ(kInstallationHomeKey, "installationHome");
    EXPECT_EQ(kNodeExecutableKey, "nodeExecutable");
    EXPECT_EQ(kDefaultInstallation, "Library/Application Support/VeltrixHomeDVR");
    EXPECT_EQ(kDefaultNode, "/usr/local/bin/node");
    EXPECT_EQ(kDefaultRetentionDays, "30");
    EXPECT_EQ(kSettingsRefused,
              "Choose an absolute installation folder and an executable Node 22+ runtime.");
    EXPECT_TRUE(kOriginPlaceholder.starts_with("https://"));
}

TEST_F(DesktopSettings, OfferTheBundlesRuntimeOnTheFirstRun) {
    const InitialFields fields = load();
    EXPECT_EQ(fields.home, defaultHome);
    EXPECT_EQ(fields.node, bundledRuntime);
    EXPECT_EQ(fields.storage, defaultHome + "/data");
    EXPECT_EQ(store.writes, Writes()) << "loading stores nothing";
}

TEST_F(DesktopSettings, OfferTheSystemsRuntimeWithoutABundledOne) {
    EXPECT_EQ(loadFields(store, userHome, folder.path("missing")).node, "/usr/local/bin/node");
    const std::string notExecutable = folder.write("Resources/text", "", 0600);
    EXPECT_EQ(loadFields(store, userHome, notExecutable).node, "/usr/local/bin/node");
}

TEST_F(DesktopSettings, AppendTheDefaultFolderToAHomeWithATrailingSlash) {
    EXPECT_EQ(loadFields(store, userHome + "/", bundledRuntime).home, defaultHome);
    EXPECT_EQ(loadFields(store, "/", bundledRuntime).home,
              "/Library/Application Support/VeltrixHomeDVR");
}

TEST_F(DesktopSettings, AreShownAsTheyWereStored) {
    const std::string home = folder.makeFolder("DVR");
    folder.write("DVR/installation.json", "");
    store.values = {{"installationHome", home}, {"nodeExecutable", "/odd/node"}};
    const InitialFields fields = load();
    EXPECT_EQ(fields.home, home);
    EXPECT_EQ(fields.node, "/odd/node") << "an installation keeps its runtime, usable or not";
    EXPECT_EQ(fields.storage, home + "/data");
}

TEST_F(DesktopSettings, PreferTheBundlesRuntimeToAStoredOneWithoutAnInstallation) {
    store.values = {{"installationHome", folder.makeFolder("empty")},
                    {"nodeExecutable", otherNode}};
    EXPECT_EQ(load().node, bundledRuntime);
    EXPECT_EQ(store.values.at("nodeExecutable"), otherNode) << "in the field, not in the store";
}

TEST_F(DesktopSettings, KeepAStoredRuntimeWithoutABundledOne) {
    store.values = {{"nodeExecutable", otherNode}};
    EXPECT_EQ(loadFields(store, userHome, folder.path("missing")).node, otherNode);
}

TEST_F(DesktopSettings, KeepTheDefaultRuntimeOfAnInstallationWithoutAStoredOne) {
    folder.write("sam/Library/Application Support/VeltrixHomeDVR/installation.json", "{}");
    EXPECT_EQ(load().node, "/usr/local/bin/node");
}

TEST_F(DesktopSettings, OnlyLookWhetherTheMarkerExists) {
    folder.makeFolder("DVR/installation.json");
    store.values = {{"installationHome", folder.path("DVR")}, {"nodeExecutable", otherNode}};
    EXPECT_EQ(load().node, otherNode);
}

TEST_F(DesktopSettings, DoubleTheSlashOfAHomeThatEndsInOne) {
    folder.write("DVR/installation.json", "");
    store.values = {{"installationHome", folder.path("DVR/")}, {"nodeExecutable", otherNode}};
    const InitialFields fields = load();
    EXPECT_EQ(fields.home, folder.path("DVR/"));
    EXPECT_EQ(fields.storage, folder.path("DVR//data"));
    EXPECT_EQ(fields.node, otherNode) << "the marker is found behind the doubled slash";
}

TEST_F(DesktopSettings, ShowAStoredEmptyOrInvalidTextAsItIs) {
    store.values = {{"installationHome", ""}, {"nodeExecutable", ""}};
    const InitialFields fields = loadFields(store, userHome, folder.path("missing"));
    EXPECT_EQ(fields.home, "");
    EXPECT_EQ(fields.node, "");
    EXPECT_EQ(fields.storage, "/data");
}

TEST_F(DesktopSettings, AreStoredBothHomeFirst) {
    EXPECT_TRUE(storeSettings(store, "/no/such/folder", otherNode));
    EXPECT_EQ(store.writes,
              (Writes{{"installationHome", "/no/such/folder"}, {"nodeExecutable", otherNode}}));
}

TEST_F(DesktopSettings, AreFlushedOnceBothAreStored) {
    EXPECT_TRUE(storeSettings(store, "/Users/sam/DVR", otherNode));
    EXPECT_EQ(store.flushed, std::vector<std::size_t>{2}) << "never one without the other";
    EXPECT_FALSE(storeSettings(store, "DVR", otherNode));
    EXPECT_EQ(store.flushed.size(), 1U);
}

TEST_F(DesktopSettings, AreStoredExactlyAsTyped) {
    const std::string node = folder.write("two words/n\u00e9de'$", "", 0700);
    EXPECT_TRUE(storeSettings(store, "/a//b/ \u0085", node));
    EXPECT_EQ(store.values.at("installationHome"), "/a//b/ \u0085");
    EXPECT_EQ(store.values.at("nodeExecutable"), node);
}

TEST_F(DesktopSettings, AreStoredNeitherWhenOneIsInvalid) {
    const std::string home = "/Users/sam/DVR";
    for (const std::string& badHome :
         {std::string(), std::string("DVR"), std::string("./DVR"), std::string("/a\"b"),
          std::string("/a\tb"), std::string("/a\nb"), std::string("/a\x7f"),
          std::string("/a\0", 3)}) {
        EXPECT_FALSE(storeSettings(store, badHome, otherNode)) << badHome;
    }
    for (const std::string& badNode :
         {std::string(), std::string("node"), std::string("bin/node"), folder.path("missing"),
          folder.write("text", "", 0600), folder.write("quo\"te", "", 0700),
          folder.write("tab\there", "", 0700), otherNode + std::string("\0x", 2)}) {
        EXPECT_FALSE(storeSettings(store, home, badNode)) << badNode;
    }
    EXPECT_EQ(store.writes, Writes());
}

TEST_F(DesktopSettings, NeverSearchForNode) {
    EXPECT_FALSE(storeSettings(store, "/Users/sam/DVR", "sh"));
}

TEST_F(DesktopSettings, ExpandNoTilde) {
    EXPECT_TRUE(storeSettings(store, "~/DVR", otherNode)) << "absolute, as the platform has it";
    EXPECT_EQ(store.values.at("installationHome"), "~/DVR");
    EXPECT_FALSE(storeSettings(store, "/Users/sam/DVR", "~/no-such-node"));
}

TEST_F(DesktopSettings, TakeASearchableFolderForAnExecutableAsThePlatformDoes) {
    EXPECT_TRUE(storeSettings(store, "/Users/sam/DVR", folder.path()));
}

}  // namespace
}  // namespace veltrix::test
