#import <AppKit/AppKit.h>

#include "support/AppKitDriver.h"
#include "support/Processes.h"
#include "support/TempFolder.h"

#include <csignal>
#include <cstdlib>

#include <fcntl.h>
#include <unistd.h>

#include <gtest/gtest.h>

using veltrix::test::contentsOf;
using veltrix::test::hasChildren;
using veltrix::test::pumpUntil;
using veltrix::test::TempFolder;

namespace {

// With an `xdg-open` of its own that leaves what it was given.
struct WorkspaceTest : ::testing::Test {
    WorkspaceTest() : path_(std::getenv("PATH")) { setenv("PATH", path().c_str(), 1); }
    ~WorkspaceTest() override { setenv("PATH", path_.c_str(), 1); }

    [[nodiscard]] std::string path() const { return folder.path() + ":/usr/bin:/bin"; }

    void install(const std::string& script) const {
        folder.write("xdg-open", "#!/bin/sh\n" + script + "\n: > '" + folder.path("done") + "'\n",
                     0700);
    }

    static bool open(NSURL* url) { return [[NSWorkspace sharedWorkspace] openURL:url]; }

    [[nodiscard]] bool isDone() const {
        return pumpUntil([this] { return access(folder.path("done").c_str(), F_OK) == 0; });
    }

    const TempFolder folder;

  private:
    std::string path_;
};

TEST_F(WorkspaceTest, HandsOverAPageAsItsAbsoluteAddress) {
    install("printf '%s|%s' \"$#\" \"$1\" > '" + folder.path("given") + "'");
    ASSERT_TRUE(open([NSURL URLWithString:@"https://dvr.example.net/a%20b?c=d&e=f"]));
    ASSERT_TRUE(isDone());
    EXPECT_EQ(contentsOf(folder.path("given")), "1|https://dvr.example.net/a%20b?c=d&e=f");
}

TEST_F(WorkspaceTest, HandsOverAFolderAsItsPath) {
    install("printf '%s' \"$1\" > '" + folder.path("given") + "'");
    const std::string inner = folder.makeFolder("a folder's \"name\"");
    ASSERT_TRUE(open([NSURL fileURLWithPath:[NSString stringWithUTF8String:inner.c_str()]]));
    ASSERT_TRUE(isDone());
    EXPECT_EQ(contentsOf(folder.path("given")), inner);
}

TEST_F(WorkspaceTest, SaysNoWhenThereIsNobodyToHandItTo) {
    setenv("PATH", folder.path("empty").c_str(), 1);
    EXPECT_FALSE(open([NSURL URLWithString:@"https://dvr.example.net/"]));
    EXPECT_FALSE(hasChildren());
}

TEST_F(WorkspaceTest, SaysNoToNothing) {
    EXPECT_FALSE(open(nil));
}

TEST_F(WorkspaceTest, LeavesNoZombie) {
    install("exit 3");
    ASSERT_TRUE(open([NSURL URLWithString:@"https://dvr.example.net/"]));
    EXPECT_TRUE(pumpUntil([] { return !hasChildren(); }));
}

TEST_F(WorkspaceTest, LetsNoDescriptorThroughButThreeForTheNullDevice) {
    const int leaked = fcntl(STDOUT_FILENO, F_DUPFD, 50);
    ASSERT_GE(leaked, 50);
    // The shell opens further ones for itself; ls shows those of ls.
    install("ls /proc/self/fd | tr '\\n' ' ' > '" + folder.path("given") +
            "'; readlink /proc/$$/fd/0 /proc/$$/fd/2 >> '" + folder.path("given") + "'");
    ASSERT_TRUE(open([NSURL URLWithString:@"https://dvr.example.net/"]));
    ASSERT_TRUE(isDone());
    close(leaked);
    EXPECT_EQ(contentsOf(folder.path("given")), "0 1 2 3 /dev/null\n/dev/null\n");
}

TEST_F(WorkspaceTest, GivesDefaultSignalsAndAnEmptyMask) {
    sigset_t blocked;
    sigset_t before;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &blocked, &before);
    const auto broken = std::signal(SIGPIPE, SIG_IGN);
    install("grep -E '^Sig(Blk|Ign)' /proc/self/status > '" + folder.path("given") + "'");
    const bool opened = open([NSURL URLWithString:@"https://dvr.example.net/"]);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    std::signal(SIGPIPE, broken);
    ASSERT_TRUE(opened);
    ASSERT_TRUE(isDone());
    const std::string given = contentsOf(folder.path("given"));
    EXPECT_NE(given.find("SigBlk:\t0000000000000000"), std::string::npos) << given;
    const auto ignored = std::stoull(given.substr(given.find("SigIgn:") + 7), nullptr, 16);
    EXPECT_EQ(ignored & (1ULL << (SIGPIPE - 1)), 0U) << given;
}

}  // namespace
