#include "gnustep/runtime/UnfinishedFiles.h"

#include "support/TempFolder.h"

#include <chrono>
#include <filesystem>
#include <set>
#include <string>

#include <gtest/gtest.h>

using veltrix::gnustep::removeUnfinishedFiles;
using veltrix::test::TempFolder;

namespace {

struct UnfinishedFilesTest : ::testing::Test {
    void writeOld(const std::string& name) const {
        const std::string file = folder.write(name, "half");
        const auto now = std::filesystem::file_time_type::clock::now();
        std::filesystem::last_write_time(file, now - std::chrono::minutes(2));
    }

    [[nodiscard]] std::set<std::string> remaining() const {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
            names.insert(entry.path().filename());
        return names;
    }

    const TempFolder folder;
};

TEST_F(UnfinishedFilesTest, OfACrashAreRemoved) {
    writeOld("Program.plistAb3xY9");
    writeOld("Program.plistzzzzzz");
    removeUnfinishedFiles(folder.path(), "Program.plist");
    EXPECT_EQ(remaining(), std::set<std::string>());
}

TEST_F(UnfinishedFilesTest, ThatAreBeingWrittenAreLeftAlone) {
    folder.write("Program.plistAb3xY9", "");
    removeUnfinishedFiles(folder.path(), "Program.plist");
    EXPECT_EQ(remaining().size(), 1U);
}

TEST_F(UnfinishedFilesTest, AreNotConfusedWithOthers) {
    const std::set<std::string> others{"Program.plist",        "Program.plist-copy1",
                                       "Program.plist12345",   "Program.plist1234567",
                                       "Programs.plistAb3xY9", "Other.plistAb3xY9"};
    for (const std::string& name : others)
        writeOld(name);
    std::filesystem::create_directory(folder.path("Program.plistFolder"));
    removeUnfinishedFiles(folder.path(), "Program.plist");
    std::set<std::string> expected = others;
    expected.insert("Program.plistFolder");
    EXPECT_EQ(remaining(), expected);
}

TEST_F(UnfinishedFilesTest, OfAFolderThatIsNotThereAreNone) {
    removeUnfinishedFiles(folder.path("missing"), "Program.plist");
}

}  // namespace
