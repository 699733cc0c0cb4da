// Paths as long as a system takes them, and longer.
#include "endurance/EnduranceFixture.h"
#include "setup/PublicOrigin.h"
#include "support/ChildReport.h"
#include "support/TempFolder.h"

#include <filesystem>

namespace veltrix::test {
namespace {

// The longest path that every system takes, PATH_MAX of limits.h on macOS without its NUL byte.
constexpr std::size_t kLongest = 1'023;
constexpr std::size_t kTooLong = 5'000;

// Below `folder`, of exactly `length` bytes, in components of a length that every system takes.
std::string pathOfLength(const std::string& folder, std::size_t length) {
    constexpr std::size_t kComponent = 200;
    std::string path = folder;
    while (path.size() + kComponent + 2 < length) {
        path += "/" + std::string(kComponent, 'd');
    }
    return path + "/" + std::string(length - path.size() - 1, 'e');
}

class LongPaths : public Endurance {
  protected:
    const TempFolder folder;
};

TEST_F(LongPaths, AreUsedWhole) {
    const std::string node = pathOfLength(folder.path(), kLongest);
    std::filesystem::create_directories(std::filesystem::path(node).parent_path());
    std::filesystem::create_symlink(fixtureChild(), node);
    for (const std::size_t length : {kLongest, kLongest + 1, kTooLong}) {
        const std::string home = "/" + std::string(length - 1, 'h');
        const std::string report = folder.path("report-" + std::to_string(length));
        ActionJob job = jobFor("service.mjs", "report " + report + "\nprint {\"ok\":true}");
        job.executable = node;
        job.arguments.insert(job.arguments.end(), {"status", "--home", home});
        EXPECT_EQ(run(job), (Reply{{"ok", Json(true)}}));
        EXPECT_EQ(awaitReport(report).arguments.front(), node);
        EXPECT_EQ(awaitReport(report).arguments.back(), home);
    }
}

TEST_F(LongPaths, LeadToTheSettings) {
    const std::string settings = "/config/settings.json";
    const std::string home = pathOfLength(folder.path(), kLongest - settings.size());
    folder.write(home.substr(folder.path().size() + 1) + settings,
                 R"({"DVR_PUBLIC_ORIGIN":"https://dvr.example"})");
    EXPECT_EQ(publicOrigin(home), "https://dvr.example");
}

TEST_F(LongPaths, AreAPlainFailureWhenTheSystemRefusesThem) {
    const std::string path = pathOfLength(folder.path(), kTooLong);
    EXPECT_EQ(run({path, {"script"}, std::nullopt}), incompleteReply());
    EXPECT_EQ(useAndClose(makeChannel(path), 1), std::vector<Reply>{setupFailureReply()});
    EXPECT_EQ(publicOrigin(path), "");
}

}  // namespace
}  // namespace veltrix::test
