#include "common/ValidPath.h"

#include <gtest/gtest.h>

#include <string>

namespace veltrix {
namespace {

TEST(ValidPath, AcceptsAbsolutePathsWhetherOrNotTheyExist) {
    for (const char* path :
         {"/", "//", "/a", "/no/such/folder", "/a/", "/a//b", "/./..", "/a b", "/a'b", "/a$b%c\\d",
          "/-rf", "/Users/sam/Library/Application Support/VeltrixHomeDVR"}) {
        EXPECT_TRUE(validPath(path)) << path;
    }
    EXPECT_TRUE(validPath("/" + std::string(5000, 'a')));
}

TEST(ValidPath, TakesALeadingTildeForAbsoluteAsThePlatformDoes) {
    EXPECT_TRUE(validPath("~"));
    EXPECT_TRUE(validPath("~/DVR"));
    EXPECT_TRUE(validPath("~sam/DVR"));
}

TEST(ValidPath, RefusesEverythingElseAsRelative) {
    for (const char* path : {"", " ", " /a", "node", "./node", "../node", "a/b", "a~", "\\a",
                             "C:/a", "file:///a", "\xEF\xBB\xBF/a"}) {
        EXPECT_FALSE(validPath(path)) << path;
    }
}

TEST(ValidPath, RefusesADoubleQuoteAnywhere) {
    EXPECT_FALSE(validPath("/\""));
    EXPECT_FALSE(validPath("/a\"b"));
    EXPECT_FALSE(validPath("\"/a\""));
    EXPECT_TRUE(validPath("/a\u201Cb\u201D\uFF02")) << "only U+0022 counts";
}

TEST(ValidPath, RefusesEveryAsciiControlCharacterAnywhere) {
    for (int value = 0; value < 0x80; ++value) {
        const bool isControl = value < 0x20 || value == 0x7F;
        const auto character = static_cast<char>(value);
        const bool allowed = !isControl && character != '"';
        EXPECT_EQ(validPath(std::string("/a") + character + "b"), allowed) << value;
        EXPECT_EQ(validPath(std::string("/a") + character), allowed) << value;
    }
    EXPECT_FALSE(validPath("/a\tb"));
    EXPECT_FALSE(validPath("/a\nb"));
    EXPECT_FALSE(validPath("/a\u007Fb"));
    EXPECT_FALSE(validPath(std::string_view("/\0", 2)));
}

TEST(ValidPath, AcceptsEverythingAboveAscii) {
    for (const char* path : {"/\u0080", "/a\u0085b", "/\u009F", "/\u00A0", "/\u00E9", "/e\u0301",
                             "/\u2028", "/\uFEFF", "/\u65E5\u672C", "/\U0001F4FA"}) {
        EXPECT_TRUE(validPath(path)) << path;
    }
}

}  // namespace
}  // namespace veltrix
