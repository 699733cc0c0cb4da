// What a child gets from its launch, and what a launch that fails leaves behind.
#include "common/ChildProcess.h"

#include "support/ChildReport.h"
#include "support/DescriptorLimit.h"
#include "support/LaunchedChild.h"
#include "support/Processes.h"
#include "support/SignalStorm.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <thread>

namespace veltrix::test {
namespace {

class ChildProcessLaunch : public testing::Test {
  protected:
    // Launches a child that reports on itself, and returns the report once it has exited.
    [[nodiscard]] ChildReport report(const std::vector<std::string>& arguments = {},
                                     const std::vector<std::string>& environment = {}) const {
        const std::string path = resources.scratch("report");
        std::filesystem::remove(path);
        LaunchedChild child =
            launchChild(resources, "report " + path + "\n", arguments, environment);
        EXPECT_TRUE(child.process);
        if (child.process) {
            EXPECT_EQ(child.finish(), "");
        }
        return awaitReport(path);
    }

    void expectFailure(const std::string& executable) const {
        SCOPED_TRACE(executable);
        const std::vector<int> before = openDescriptors();
        {
            const LaunchedChild child = launchCommand({executable, {"argument"}, {"PATH=/bin"}});
            EXPECT_EQ(child.process, nullptr);
        }
        EXPECT_EQ(openDescriptors(), before);
        EXPECT_FALSE(hasChildren());
    }

    const ResourceFixture resources;
};

TEST_F(ChildProcessLaunch, PassesArgumentsByteForByte) {
    const std::vector<std::string> awkward{
        "",         " ",     "two words ", "\"quoted\"",
        "'single'", "$HOME", "%PATH%",     "a\\b",
        "--home",   "-",     "*",          "~",
        "\n",       "\t",    "\xff",       "\u00E9\U0001F4FA",
        "`id`",     ";exit", "",           std::string(5000, 'x')};
    const ChildReport seen = report(awkward);
    ASSERT_EQ(seen.arguments.size(), awkward.size() + 2);
    EXPECT_EQ(seen.arguments[0], resources.node()) << "its own name is the path it was started by";
    EXPECT_EQ(std::vector<std::string>(seen.arguments.begin() + 2, seen.arguments.end()), awkward);
}

TEST_F(ChildProcessLaunch, PassesTheGivenEnvironmentAndNothingElse) {
    ASSERT_EQ(::setenv("VELTRIX_TEST_SECRET", "x", 1), 0);
    const std::vector<std::string> environment{"PATH=/bin", "path=/other", "EMPTY=", "A=b=c",
                                               "BYTES=\xff\n\u00E9"};
    EXPECT_EQ(report({}, environment).environment, environment);
    EXPECT_EQ(report({}, {}).environment, std::vector<std::string>());
    ASSERT_EQ(::unsetenv("VELTRIX_TEST_SECRET"), 0);
}

TEST_F(ChildProcessLaunch, PassesThousandsOfVariables) {
    std::vector<std::string> environment;
    for (int i = 0; i < 4000; ++i) {
        environment.push_back("VARIABLE_" + std::to_string(i) + "=" + std::string(50, 'x'));
    }
    EXPECT_EQ(report({}, environment).environment, environment);
}

TEST_F(ChildProcessLaunch, StartsInOurWorkingDirectory) {
    EXPECT_EQ(report().folder, std::filesystem::current_path().string());
}

TEST_F(ChildProcessLaunch, MakesAChildOfOursInAProcessGroupOfItsOwn) {
    const ChildReport seen = report();
    EXPECT_EQ(seen.parent, ::getpid());
    EXPECT_EQ(seen.group, seen.pid);
    EXPECT_NE(seen.group, ::getpgrp());
}

TEST_F(ChildProcessLaunch, ConnectsStandardErrorToTheNullDevice) {
    struct stat device {};
    ASSERT_EQ(::stat("/dev/null", &device), 0);
    EXPECT_EQ(report().errorDevice, static_cast<long>(device.st_rdev));
}

TEST_F(ChildProcessLaunch, HandsOverThreeDescriptorsAndNoOther) {
    rlimit limit{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &limit), 0);
    limit.rlim_cur = std::max<rlim_t>(limit.rlim_cur, 1100);
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &limit), 0);
    std::vector<UniqueFd> extra;
    for (int i = 0; i < 50; ++i) {
        const int lowest = i < 40 ? 3 : 1000 + i;
        // Every other one would be inherited.
        extra.emplace_back(::fcntl(0, i % 2 == 0 ? F_DUPFD : F_DUPFD_CLOEXEC, lowest));
        ASSERT_TRUE(extra.back());
    }
    EXPECT_EQ(report().descriptors, (std::vector<int>{0, 1, 2}));
}

TEST_F(ChildProcessLaunch, StartsWithDefaultSignalsAndNoneBlocked) {
    const int kIgnored[] = {SIGPIPE, SIGTERM, SIGINT, SIGHUP, SIGCHLD, SIGUSR2, SIGALRM};
    struct sigaction before[std::size(kIgnored)];
    for (std::size_t i = 0; i < std::size(kIgnored); ++i) {
        struct sigaction ignore {};
        ignore.sa_handler = SIG_IGN;
        ASSERT_EQ(::sigaction(kIgnored[i], &ignore, &before[i]), 0);
    }
    sigset_t all;
    sigset_t mask;
    sigfillset(&all);
    ASSERT_EQ(::pthread_sigmask(SIG_SETMASK, &all, &mask), 0);
    sigset_t blockedBefore;
    sigset_t blockedAfter;
    ASSERT_EQ(::pthread_sigmask(SIG_BLOCK, nullptr, &blockedBefore), 0);

    const ChildReport seen = report();

    ASSERT_EQ(::pthread_sigmask(SIG_BLOCK, nullptr, &blockedAfter), 0);
    for (int number = 1; number < NSIG; ++number) {
        EXPECT_EQ(sigismember(&blockedAfter, number), sigismember(&blockedBefore, number))
            << "our own mask is as it was: " << number;
    }
    ASSERT_EQ(::pthread_sigmask(SIG_SETMASK, &mask, nullptr), 0);
    for (std::size_t i = 0; i < std::size(kIgnored); ++i) {
        ASSERT_EQ(::sigaction(kIgnored[i], &before[i], nullptr), 0);
    }
    EXPECT_EQ(seen.blockedSignals, std::vector<int>());
    EXPECT_EQ(seen.handledSignals, std::vector<int>());
}

TEST_F(ChildProcessLaunch, MovesBytesBothWays) {
    LaunchedChild child = launchChild(resources, "read-input " + resources.scratch("input") +
                                                     "\nprint out\\x00\\xff\\n");
    ASSERT_TRUE(child.process);
    ASSERT_TRUE(writeAll(child.input.get(), std::string_view("in\0\xff\n", 5)));
    EXPECT_EQ(child.finish(), std::string("out\0\xff\n", 6));
    EXPECT_EQ(contentsOf(resources.scratch("input")), std::string("in\0\xff\n", 5));
}

TEST_F(ChildProcessLaunch, LeavesOurEndsBlockingWhateverTheChildDoesToItsOwn) {
    LaunchedChild child = launchChild(resources, "nonblocking\nprint x\nread-input " +
                                                     resources.scratch("input") + "\nprint y");
    ASSERT_TRUE(child.process);
    ASSERT_EQ(readByte(child.output.get()), 'x');
    EXPECT_EQ(::fcntl(child.output.get(), F_GETFL) & O_NONBLOCK, 0);
    EXPECT_EQ(::fcntl(child.input.get(), F_GETFL) & O_NONBLOCK, 0);
    ASSERT_TRUE(writeAll(child.input.get(), std::string(300'000, 'z')));
    EXPECT_EQ(child.finish(), "y");
    EXPECT_EQ(contentsOf(resources.scratch("input")).size(), 300'000u);
}

TEST_F(ChildProcessLaunch, TellsWhenThereIsNoProgramToStart) {
    expectFailure("");
    expectFailure("/");
    expectFailure("/no/such/program");
    expectFailure(resources.folder());
    expectFailure(resources.folder() + "/bundle/runtime/bin/node/under-a-file");
    expectFailure(std::string(5000, 'x'));
    expectFailure("/" + std::string(300, 'x'));
}

TEST_F(ChildProcessLaunch, TellsWhenAFileIsNoProgram) {
    const TempFolder folder;
    expectFailure(folder.write("text", "exit 0\n", 0600));
    expectFailure(folder.write("no-interpreter-line", "exit 0\n", 0700));
    expectFailure(folder.write("missing-interpreter", "#!/no/such/interpreter\n", 0700));
    expectFailure(folder.write("empty", "", 0700));
    std::string foreign("\x7f"
                        "ELF\x02\x01\x01",
                        7);  // an ELF header for a machine of no kind
    foreign.append(9, '\0').append("\x02\x00\xfe\xff\x01\x00\x00\x00", 8).append(200, '\0');
    expectFailure(folder.write("other-architecture", foreign, 0700));
    std::filesystem::create_symlink(folder.path("missing"), folder.path("dangling"));
    expectFailure(folder.path("dangling"));
    std::filesystem::create_symlink(folder.path("loop"), folder.path("loop"));
    expectFailure(folder.path("loop"));
}

TEST_F(ChildProcessLaunch, NeverSearchesForAProgram) {
    ASSERT_EQ(std::filesystem::exists("sh"), false);
    expectFailure("sh");
    expectFailure("true");
}

TEST_F(ChildProcessLaunch, StartsScriptsThatNameTheirInterpreter) {
    const TempFolder folder;
    LaunchedChild child = launchCommand(
        {folder.write("script", "#!/bin/sh\nprintf '%s' \"$1\"\n", 0700), {"x y"}, {}});
    ASSERT_TRUE(child.process);
    EXPECT_EQ(child.finish(), "x y");
}

TEST_F(ChildProcessLaunch, WorksOrFailsCleanlyAtEveryDescriptorLimit) {
    // A child that exits at once: it must be wired with whatever descriptors are left.
    resources.script("exit", "");
    const ChildCommand command{resources.node(), {resources.folder() + "/exit"}, {}};
    Pipe input = *makePipe();
    Pipe output = *makePipe();
    const std::vector<int> before = openDescriptors();
    for (std::size_t spare = 0; spare < 5; ++spare) {
        std::shared_ptr<ChildProcess> child;
        {
            const DescriptorLimit limit(spare);
            child = ChildProcess::launch(command, input.readEnd.get(), output.writeEnd.get());
        }
        if (child) {
            child->waitUntilExit();
        }
        EXPECT_EQ(openDescriptors(), before) << spare;
        EXPECT_FALSE(hasChildren()) << spare;
    }
}

TEST_F(ChildProcessLaunch, KeepsEveryChildsPipesApartWhenManyThreadsLaunch) {
    // A child that held another's pipe would keep the other's end of output, or of input, from
    // arriving for as long as it lives; and one of them lives until all others are done.
    LaunchedChild longLived = launchChild(resources, "answer \nprint late");
    ASSERT_TRUE(longLived.process);
    constexpr int kThreads = 6;
    constexpr int kEach = 8;
    std::atomic<int> good = 0;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&] {
            for (int i = 0; i < kEach; ++i) {
                LaunchedChild child = launchChild(resources, "print a\ndrop-input\nprint b");
                good += child.process && child.finish() == "ab" ? 1 : 0;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(good, kThreads * kEach);
    ASSERT_TRUE(writeAll(longLived.input.get(), "\n"));
    EXPECT_EQ(longLived.finish(), "late");
    EXPECT_FALSE(hasChildren());
}

TEST_F(ChildProcessLaunch, SurvivesBeingInterruptedAllTheTime) {
    const SignalStorm storm;
    for (int i = 0; i < 20; ++i) {
        LaunchedChild child = launchChild(resources, "trickle abcdefghij");
        ASSERT_TRUE(child.process);
        EXPECT_EQ(child.finish(), "abcdefghij");
        EXPECT_FALSE(child.process->isRunning());
    }
    EXPECT_FALSE(hasChildren());
}

// What follows damages the process that it runs in, and so runs in one of its own. Standard error
// may be closed there: the exit code says how it went.
class ChildProcessLaunchDeathTest : public ChildProcessLaunch {
  protected:
    ChildProcessLaunchDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

    // `closed` is a set of bits, one for each of the descriptors 0, 1 and 2.
    [[noreturn]] void launchWithClosedStreams(int closed) const {
        for (int fd = 0; fd < 3; ++fd) {
            if ((closed & (1 << fd)) != 0) {
                ::close(fd);
            }
        }
        LaunchedChild child =
            launchChild(resources, "report " + resources.scratch("report") + "\nread-input " +
                                       resources.scratch("input") + "\nprint out");
        if (!child.process || !writeAll(child.input.get(), "in")) {
            std::_Exit(1);
        }
        if (child.finish() != "out" || contentsOf(resources.scratch("input")) != "in") {
            std::_Exit(2);
        }
        const ChildReport seen = awaitReport(resources.scratch("report"));
        std::_Exit(seen.descriptors == std::vector<int>{0, 1, 2} ? 0 : 3);
    }

    [[noreturn]] void launchAtTheProcessLimit() const {
        constexpr uid_t kOrdinaryUser = 65534;  // the superuser has no limit
        const Pipe input = *makePipe();
        const Pipe output = *makePipe();
        if (::geteuid() == 0 && ::setuid(kOrdinaryUser) != 0) {
            std::_Exit(1);
        }
        const rlimit none{0, 0};
        if (::setrlimit(RLIMIT_NPROC, &none) != 0) {
            std::_Exit(2);
        }
        const auto child = ChildProcess::launch({"/bin/sh", {"-c", "exit 0"}, {}},
                                                input.readEnd.get(), output.writeEnd.get());
        std::_Exit(child == nullptr && !hasChildren() ? 0 : 3);
    }
};

TEST_F(ChildProcessLaunchDeathTest, IsWiredRightWhicheverStandardStreamsAreClosed) {
    for (int closed = 1; closed < 8; ++closed) {
        EXPECT_EXIT(launchWithClosedStreams(closed), testing::ExitedWithCode(0), "") << closed;
    }
}

TEST_F(ChildProcessLaunchDeathTest, FailsWhenTheProcessLimitIsReached) {
    EXPECT_EXIT(launchAtTheProcessLimit(), testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace veltrix::test
