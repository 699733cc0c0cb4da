// The public origin in an installation's settings, and all that may be wrong with them.
#include "setup/PublicOrigin.h"
#include "UnprivilegedUser.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <string_view>

namespace veltrix::test {
namespace {

constexpr const char* kSettings = "config/settings.json";
constexpr const char* kStoredOrigin = "https://dvr.example:8443";
constexpr std::string_view kGoodSettings =
    R"({"DVR_PUBLIC_ORIGIN": "https://dvr.example:8443", "PORT": 3000})";

class PublicOrigin : public ::testing::Test {
  protected:
    [[nodiscard]] std::string originIn(std::string_view settings) const {
        home.write(kSettings, settings);
        return publicOrigin(home.path());
    }

    TempFolder home;
};

TEST_F(PublicOrigin, IsTheStringExactlyAsStored) {
    EXPECT_EQ(originIn(kGoodSettings), kStoredOrigin);
    EXPECT_EQ(originIn(R"({"DVR_PUBLIC_ORIGIN":"  not an origin \u00e9\n"})"),
              "  not an origin \u00E9\n");
    EXPECT_EQ(originIn(R"({"DVR_PUBLIC_ORIGIN":""})"), "");
}

TEST_F(PublicOrigin, IsEmptyWhenTheValueIsNoString) {
    for (const char* value : {"8443", "null", "true", "[]", R"(["https://dvr.example"])",
                              R"({"DVR_PUBLIC_ORIGIN":"https://dvr.example"})"}) {
        EXPECT_EQ(originIn("{\"DVR_PUBLIC_ORIGIN\":" + std::string(value) + "}"), "") << value;
    }
}

TEST_F(PublicOrigin, IsEmptyWhenTheKeyIsMissing) {
    EXPECT_EQ(originIn("{}"), "");
    EXPECT_EQ(originIn(R"({"dvr_public_origin":"https://dvr.example"})"), "");
    EXPECT_EQ(originIn(R"({"nested":{"DVR_PUBLIC_ORIGIN":"https://dvr.example"}})"), "");
}

TEST_F(PublicOrigin, IsEmptyWhenTheSettingsAreNoJsonObject) {
    for (const char* settings :
         {"", " ", "DVR_PUBLIC_ORIGIN=https://dvr.example", R"({"DVR_PUBLIC_ORIGIN":"https)",
          R"([{"DVR_PUBLIC_ORIGIN":"https://dvr.example"}])", R"("DVR_PUBLIC_ORIGIN")",
          R"({"DVR_PUBLIC_ORIGIN":"https://dvr.example"} x)",
          "{\"DVR_PUBLIC_ORIGIN\":\"https://dvr.example\xFF\"}"}) {
        EXPECT_EQ(originIn(settings), "") << settings;
    }
}

TEST_F(PublicOrigin, IsReadFrom65536BytesAndNotFromOneMore) {
    std::string settings(kGoodSettings);
    settings.resize(65536, ' ');
    EXPECT_EQ(originIn(settings), kStoredOrigin);
    settings.push_back(' ');
    EXPECT_EQ(originIn(settings), "");
    settings.resize(1'000'000, ' ');
    EXPECT_EQ(originIn(settings), "");
}

TEST_F(PublicOrigin, IsEmptyWithoutSettings) {
    EXPECT_EQ(publicOrigin(home.path()), "");
    EXPECT_EQ(publicOrigin(home.path("no/such/home")), "");
    EXPECT_EQ(publicOrigin(""), "");
}

TEST_F(PublicOrigin, IsLookedForUnderTheHomeAsItIsSpelled) {
    home.write(kSettings, kGoodSettings);
    EXPECT_EQ(publicOrigin(home.path() + "/"), kStoredOrigin);
    EXPECT_EQ(publicOrigin(home.path() + "///"), kStoredOrigin);
    EXPECT_EQ(publicOrigin(home.path() + "/config/.."), kStoredOrigin);
    EXPECT_EQ(publicOrigin(home.path() + " "), "") << "nothing is trimmed";
}

TEST_F(PublicOrigin, IsFoundThroughSymbolicLinks) {
    const TempFolder elsewhere;
    home.makeFolder("config");
    std::filesystem::create_symlink(elsewhere.write("real.json", kGoodSettings),
                                    home.path(kSettings));
    EXPECT_EQ(publicOrigin(home.path()), kStoredOrigin);
    std::filesystem::create_directory_symlink(home.path(), elsewhere.path("home"));
    EXPECT_EQ(publicOrigin(elsewhere.path("home")), kStoredOrigin);
}

TEST_F(PublicOrigin, IsEmptyWhenALinkLeadsNowhereOrInACircle) {
    home.makeFolder("config");
    std::filesystem::create_symlink("missing.json", home.path(kSettings));
    EXPECT_EQ(publicOrigin(home.path()), "");
    std::filesystem::remove(home.path(kSettings));
    std::filesystem::create_symlink("settings.json", home.path(kSettings));
    EXPECT_EQ(publicOrigin(home.path()), "");
}

// Nobody writes to the pipe: opening it the usual way would never return.
TEST_F(PublicOrigin, IsEmptyAtOnceWhenTheSettingsAreANamedPipe) {
    home.makeFolder("config");
    ASSERT_EQ(::mkfifo(home.path(kSettings).c_str(), 0600), 0);
    EXPECT_EQ(publicOrigin(home.path()), "");
}

TEST_F(PublicOrigin, IsEmptyWhenTheSettingsAreAFolderOrADevice) {
    home.makeFolder(kSettings);
    EXPECT_EQ(publicOrigin(home.path()), "");
    std::filesystem::remove(home.path(kSettings));
    std::filesystem::create_symlink("/dev/zero", home.path(kSettings));
    EXPECT_EQ(publicOrigin(home.path()), "");
}

TEST_F(PublicOrigin, IsEmptyWhenTheConfigFolderIsAFile) {
    home.write("config", "{}");
    EXPECT_EQ(publicOrigin(home.path()), "");
}

TEST_F(PublicOrigin, IsEmptyWhenTheSettingsMayNotBeRead) {
    const std::string file = home.write(kSettings, kGoodSettings, 0644);
    ASSERT_EQ(::chmod(home.path().c_str(), 0755), 0);
    ASSERT_EQ(::chmod(home.path("config").c_str(), 0755), 0);
    {
        const UnprivilegedUser nobody;
        ASSERT_EQ(publicOrigin(home.path()), kStoredOrigin);
    }
    ASSERT_EQ(::chmod(file.c_str(), 0000), 0);
    const UnprivilegedUser nobody;
    EXPECT_EQ(publicOrigin(home.path()), "");
}

}  // namespace
}  // namespace veltrix::test
