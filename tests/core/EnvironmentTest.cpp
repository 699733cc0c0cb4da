#include "common/Environment.h"

#include "operator/ActionJob.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>

namespace veltrix {
namespace {

using Entries = std::vector<std::string>;

Entries forOperator(const Entries& entries) {
    return filterEnvironment(entries, kOperatorEnvironment);
}

TEST(Environment, LetsTheseTwelveNamesReachAnOperatorScript) {
    constexpr std::array<std::string_view, 12> kExpected{"PATH",
                                                         "HOME",
                                                         "USER",
                                                         "LOGNAME",
                                                         "TMPDIR",
                                                         "LANG",
                                                         "LC_ALL",
                                                         "DOCKER_HOST",
                                                         "DOCKER_CONTEXT",
                                                         "DOCKER_CONFIG",
                                                         "DOCKER_TLS_VERIFY",
                                                         "DOCKER_CERT_PATH"};
    EXPECT_EQ(kOperatorEnvironment, kExpected);
    Entries all;
    for (const std::string_view name : kExpected) {
        all.push_back(std::string(name) + "=value of " + std::string(name));
    }
    EXPECT_EQ(forOperator(all), all);
}

TEST(Environment, KeepsNothingElse) {
    EXPECT_EQ(forOperator({"NODE_OPTIONS=--require=/tmp/x.js",
                           "NODE_PATH=/tmp",
                           "LD_PRELOAD=/x.so",
                           "LD_LIBRARY_PATH=/x",
                           "DYLD_INSERT_LIBRARIES=/x.dylib",
                           "DYLD_LIBRARY_PATH=/x",
                           "SSL_CERT_FILE=/x",
                           "SSL_CERT_DIR=/x",
                           "SSLKEYLOGFILE=/x",
                           "OPENSSL_CONF=/x",
                           "HTTPS_PROXY=http://x",
                           "NODE_EXTRA_CA_CERTS=/x",
                           "NODE_TLS_REJECT_UNAUTHORIZED=0",
                           "SHELL=/bin/sh",
                           "PWD=/",
                           "LC_CTYPE=C",
                           "LC_ALLX=C",
                           "XLC_ALL=C",
                           "PATHS=/",
                           "PAT=/",
                           "DOCKER_=1",
                           "DOCKER=1",
                           " PATH=/",
                           "PATH =/",
                           "__CF_USER_TEXT_ENCODING=0"}),
              Entries());
}

TEST(Environment, KeepsAnyLetterCaseInItsOwnSpelling) {
    const Entries entries{"path=/a", "Path=/b", "PATH=/c", "lang=de", "docker_Host=tcp://x"};
    EXPECT_EQ(forOperator(entries), entries);
}

TEST(Environment, KeepsValuesUnchanged) {
    const Entries entries{"PATH=",
                          "HOME=a=b==",
                          "LANG=two\nlines",
                          "USER=\xff\xfe\x80",
                          "TMPDIR= /t ",
                          "LC_ALL=\"$HOME\"",
                          "LOGNAME=\xC3\xA9\xE2\x82\xAC"};
    EXPECT_EQ(forOperator(entries), entries);
}

TEST(Environment, KeepsTheOrder) {
    const Entries entries{"LC_ALL=1", "HOME=2", "PATH=3", "LANG=4"};
    EXPECT_EQ(forOperator(entries), entries);
}

TEST(Environment, KeepsTheFirstOfTwoEntriesWithTheVerySameName) {
    EXPECT_EQ(forOperator({"PATH=first", "HOME=h", "PATH=second", "Path=other", "Path=again"}),
              (Entries{"PATH=first", "HOME=h", "Path=other"}));
}

TEST(Environment, DropsEntriesWithoutANameOrWithoutAnEqualsSign) {
    EXPECT_EQ(forOperator({"PATH", "", "=", "=PATH", "=/bin", "==", "HOME=/h"}),
              (Entries{"HOME=/h"}));
}

TEST(Environment, KnowsOnlyAsciiLettersToHaveAnUpperCase) {
    // U+017F, U+0131, U+212A and full-width letters have "upper cases" that look like listed names.
    EXPECT_EQ(forOperator({"U\u017FER=1", "u\u017Fer=1", "TMPD\u0131R=1", "tmpd\u0131r=1",
                           "DOC\u212AER_HOST=1", "\uFF50\uFF41\uFF54\uFF48=1", "PATH\u0301=1"}),
              Entries());
}

TEST(Environment, TakesNamesOfAnyBytes) {
    EXPECT_EQ(forOperator({"PATH\xff=1", "\xc0\x80=1", std::string("PA\0TH=1", 7), "USER=\xff"}),
              (Entries{"USER=\xff"}));
}

TEST(Environment, OfNothingIsNothing) {
    EXPECT_EQ(forOperator({}), Entries());
    EXPECT_EQ(filterEnvironment({"PATH=/bin"}, {}), Entries());
}

TEST(Environment, OfThousandsIsFilteredInOneGo) {
    Entries entries;
    for (int i = 0; i < 5000; ++i) {
        entries.push_back("VARIABLE_" + std::to_string(i) + "=" + std::string(100, 'x'));
    }
    entries.push_back("PATH=/usr/bin:/bin:/usr/sbin:/sbin");
    EXPECT_EQ(forOperator(entries), (Entries{"PATH=/usr/bin:/bin:/usr/sbin:/sbin"}));
}

TEST(Environment, OfThisProcessIsWhatTheSystemSays) {
    ASSERT_EQ(::setenv("VELTRIX_TEST_VARIABLE", "a=b", 1), 0);
    const Entries entries = processEnvironment();
    EXPECT_EQ(std::count(entries.begin(), entries.end(), "VELTRIX_TEST_VARIABLE=a=b"), 1);
    ASSERT_EQ(::unsetenv("VELTRIX_TEST_VARIABLE"), 0);
    const Entries after = processEnvironment();
    EXPECT_EQ(std::count(after.begin(), after.end(), "VELTRIX_TEST_VARIABLE=a=b"), 0);
}

}  // namespace
}  // namespace veltrix
