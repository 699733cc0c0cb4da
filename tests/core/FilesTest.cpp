#include "common/Files.h"

#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <filesystem>

namespace veltrix {
namespace {

using test::TempFolder;

TEST(Files, ExistWhateverTheyAre) {
    const TempFolder folder;
    EXPECT_TRUE(fileExists(folder.write("file", "")));
    EXPECT_TRUE(fileExists(folder.path()));
    EXPECT_TRUE(fileExists(folder.path() + "//file"));
    EXPECT_FALSE(fileExists(folder.path("missing")));
    EXPECT_FALSE(fileExists(""));
}

TEST(Files, ExistThroughASymbolicLinkOnlyIfItsTargetDoes) {
    const TempFolder folder;
    std::filesystem::create_symlink(folder.write("file", ""), folder.path("good"));
    std::filesystem::create_symlink(folder.path("missing"), folder.path("dangling"));
    EXPECT_TRUE(fileExists(folder.path("good")));
    EXPECT_FALSE(fileExists(folder.path("dangling")));
}

TEST(Files, AreExecutableByPermissionAlone) {
    const TempFolder folder;
    EXPECT_TRUE(isExecutableFile(folder.write("program", "not really", 0700)));
    EXPECT_TRUE(isExecutableFile(folder.write("only-executable", "", 0100)));
    EXPECT_FALSE(isExecutableFile(folder.write("text", "", 0600)));
    EXPECT_FALSE(isExecutableFile(folder.path("missing")));
    EXPECT_FALSE(isExecutableFile(""));
}

TEST(Files, CountASearchableFolderAsExecutable) {
    const TempFolder folder;
    EXPECT_TRUE(isExecutableFile(folder.path()));
}

TEST(Files, AreNotExpandedAndNotSearchedFor) {
    EXPECT_FALSE(isExecutableFile("sh"));
    EXPECT_FALSE(isFolder("~"));
}

TEST(Files, AreFoldersAlsoThroughASymbolicLink) {
    const TempFolder folder;
    std::filesystem::create_symlink(folder.path(), folder.path("link"));
    EXPECT_TRUE(isFolder(folder.path()));
    EXPECT_TRUE(isFolder(folder.path("link")));
    EXPECT_FALSE(isFolder(folder.write("file", "")));
    EXPECT_FALSE(isFolder(folder.path("missing")));
}

TEST(ReadFile, ReturnsEveryByte) {
    const TempFolder folder;
    const std::string bytes("\0\xff\r\n{}", 6);
    EXPECT_EQ(readFile(folder.write("file", bytes), 100), bytes);
    EXPECT_EQ(readFile(folder.write("empty", ""), 100), "");
    EXPECT_EQ(readFile(folder.path("empty"), 0), "");
}

TEST(ReadFile, TakesAFileOfTheLimitAndRefusesALongerOne) {
    const TempFolder folder;
    const std::string file = folder.write("file", std::string(65536, 'x'));
    EXPECT_EQ(readFile(file, 65537), std::string(65536, 'x'));
    EXPECT_EQ(readFile(file, 65536), std::string(65536, 'x'));
    EXPECT_EQ(readFile(file, 65535), std::nullopt);
    EXPECT_EQ(readFile(file, 0), std::nullopt);
}

TEST(ReadFile, RefusesWhatIsNoRegularFileWithoutWaiting) {
    const TempFolder folder;
    ASSERT_EQ(::mkfifo(folder.path("fifo").c_str(), 0600), 0);
    EXPECT_EQ(readFile(folder.path("fifo"), 100), std::nullopt);
    EXPECT_EQ(readFile(folder.path(), 100), std::nullopt);
    EXPECT_EQ(readFile("/dev/zero", 100), std::nullopt);
    EXPECT_EQ(readFile(folder.path("missing"), 100), std::nullopt);
    EXPECT_EQ(readFile("", 100), std::nullopt);
}

}  // namespace
}  // namespace veltrix
