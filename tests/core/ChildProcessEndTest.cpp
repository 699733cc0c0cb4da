// How a child ends: asked to, by itself, reaped by somebody else, watched by several threads.
#include "common/ChildProcess.h"

#include "support/LaunchedChild.h"
#include "support/Processes.h"
#include "support/WaitFor.h"

#include <gtest/gtest.h>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <mutex>
#include <thread>

namespace veltrix::test {
namespace {

class ChildProcessEnd : public testing::Test {
  protected:
    [[nodiscard]] LaunchedChild launch(const std::string& steps) const {
        LaunchedChild child = launchChild(resources, steps);
        EXPECT_TRUE(child.process);
        return child;
    }

    // A child that has carried out `steps` and now hangs.
    [[nodiscard]] LaunchedChild launchAndAwait(const std::string& steps) const {
        LaunchedChild child = launch(steps + "\nprint .\nhang");
        EXPECT_EQ(readByte(child.output.get()), '.');
        return child;
    }

    void touch(const std::string& name) const { temporary.write(name, ""); }
    [[nodiscard]] std::string path(const std::string& name) const { return temporary.path(name); }

    const ResourceFixture resources;
    const TempFolder temporary;
};

TEST_F(ChildProcessEnd, RunsUntilItExits) {
    LaunchedChild child = launch("await " + path("go"));
    EXPECT_TRUE(child.process->isRunning());
    EXPECT_GT(child.process->pid(), 0);
    touch("go");
    EXPECT_TRUE(waitFor([&] { return !child.process->isRunning(); }));
    EXPECT_FALSE(hasChildren()) << "asking reaps";
    EXPECT_FALSE(child.process->isRunning());
}

TEST_F(ChildProcessEnd, IsReapedByWaiting) {
    for (const char* steps : {"", "exit 1", "exit 255", "die"}) {
        const LaunchedChild child = launch(steps);
        child.process->waitUntilExit();
        EXPECT_FALSE(hasChildren()) << steps;
        EXPECT_FALSE(child.process->isRunning()) << steps;
        child.process->waitUntilExit();
        child.process->terminate();
    }
}

TEST_F(ChildProcessEnd, LeavesNoZombieAfterAHundredImmediateExits) {
    for (int i = 0; i < 100; ++i) {
        LaunchedChild child = launch("exit 3");
        if (i % 2 == 0) {
            child.process->waitUntilExit();
        } else {
            ASSERT_TRUE(waitFor([&] { return !child.process->isRunning(); }));
        }
        ASSERT_FALSE(hasChildren()) << i;
    }
}

TEST_F(ChildProcessEnd, IsAskedToEndByOneSigterm) {
    const LaunchedChild child = launchAndAwait("");
    child.process->terminate();
    child.process->waitUntilExit();
    EXPECT_FALSE(hasChildren());
}

TEST_F(ChildProcessEnd, HearsEachRequestOnceAndNothingStronger) {
    LaunchedChild child = launch("count-terminates " + path("count") + "\nprint .\nawait " +
                                 path("go") + "\nprint alive");
    ASSERT_EQ(readByte(child.output.get()), '.');
    child.process->terminate();
    ASSERT_TRUE(waitFor([&] { return contentsOf(path("count")) == "T"; }));
    EXPECT_TRUE(child.process->isRunning());
    child.process->terminate();
    ASSERT_TRUE(waitFor([&] { return contentsOf(path("count")) == "TT"; }));
    touch("go");
    EXPECT_EQ(child.finish(), "alive");
    EXPECT_EQ(contentsOf(path("count")), "TT");
}

TEST_F(ChildProcessEnd, IsAskedAloneWithoutItsDescendants) {
    // The descendant shares its process group and the handler that counts.
    LaunchedChild child = launch("count-terminates " + path("count") + "\ndescend " +
                                 path("release") + "\nprint .\nawait " + path("go"));
    ASSERT_EQ(readByte(child.output.get()), '.');
    child.process->terminate();
    ASSERT_TRUE(waitFor([&] { return !contentsOf(path("count")).empty(); }));
    touch("go");
    child.process->waitUntilExit();
    touch("release");
    EXPECT_EQ(child.finish(), "") << "the end of output: the descendant has gone, too";
    EXPECT_EQ(contentsOf(path("count")), "T");
}

TEST_F(ChildProcessEnd, MayIgnoreBeingAsked) {
    LaunchedChild child = launch("ignore-terminate\nprint .\nawait " + path("go"));
    ASSERT_EQ(readByte(child.output.get()), '.');
    child.process->terminate();
    EXPECT_TRUE(child.process->isRunning());
    touch("go");
    child.process->waitUntilExit();
}

TEST_F(ChildProcessEnd, HearsTheRequestWhenItIsContinuedAfterBeingStopped) {
    const LaunchedChild child = launch("stop\nhang");
    siginfo_t info{};
    ASSERT_EQ(::waitid(P_PID, static_cast<id_t>(child.process->pid()), &info, WSTOPPED | WNOWAIT),
              0);
    EXPECT_TRUE(child.process->isRunning()) << "stopped is not gone";
    child.process->terminate();
    EXPECT_TRUE(child.process->isRunning());
    ASSERT_EQ(::kill(child.process->pid(), SIGCONT), 0);
    child.process->waitUntilExit();
    EXPECT_FALSE(hasChildren());
}

TEST_F(ChildProcessEnd, LeavesNoZombieWhenItIsDroppedWhileItRuns) {
    const pid_t pid = [this] {
        const LaunchedChild child = launch("await " + path("go"));
        return child.process->pid();
    }();
    EXPECT_TRUE(processExists(pid)) << "dropping ends nothing";
    touch("go");
    EXPECT_TRUE(waitFor([] { return !hasChildren(); }));
    EXPECT_FALSE(processExists(pid));
}

TEST_F(ChildProcessEnd, LeavesNoZombieWhenItIsDroppedAfterItsExit) {
    {
        const LaunchedChild child = launch("");
        siginfo_t info{};
        ASSERT_EQ(
            ::waitid(P_PID, static_cast<id_t>(child.process->pid()), &info, WEXITED | WNOWAIT), 0);
        ASSERT_TRUE(hasChildren());
    }
    EXPECT_FALSE(hasChildren());
}

TEST_F(ChildProcessEnd, CountsAsExitedWhenSomebodyElseReapedIt) {
    const LaunchedChild child = launch("");
    const pid_t pid = child.process->pid();
    ASSERT_EQ(::waitpid(pid, nullptr, 0), pid);
    EXPECT_FALSE(child.process->isRunning());
    child.process->terminate();
    child.process->waitUntilExit();
}

TEST_F(ChildProcessEnd, StopsWaitingWhenSomebodyElseReapsIt) {
    for (int round = 0; round < 50; ++round) {
        const LaunchedChild child = launch("");
        std::atomic<bool> over = false;
        std::thread thief([&over] {
            while (!over) {
                ::waitpid(-1, nullptr, WNOHANG);
            }
        });
        child.process->waitUntilExit();
        EXPECT_FALSE(child.process->isRunning());
        over = true;
        thief.join();
    }
    EXPECT_FALSE(hasChildren());
}

TEST_F(ChildProcessEnd, IsSeenWhereTheSystemReapsByItself) {
    struct sigaction before {};
    struct sigaction ignore {};
    ignore.sa_handler = SIG_IGN;
    ASSERT_EQ(::sigaction(SIGCHLD, &ignore, &before), 0);
    LaunchedChild waited = launch("print x");
    EXPECT_EQ(waited.finish(), "x");
    LaunchedChild asked = launch("print y");
    EXPECT_TRUE(waitFor([&] { return !asked.process->isRunning(); }));
    asked.process->terminate();
    EXPECT_EQ(asked.finish(), "y");
    ASSERT_EQ(::sigaction(SIGCHLD, &before, nullptr), 0);
}

TEST_F(ChildProcessEnd, NeverReapsAProcessThatIsNotItsOwn) {
    const pid_t stranger = ::fork();
    if (stranger == 0) {
        ::_exit(42);
    }
    for (int i = 0; i < 10; ++i) {
        const LaunchedChild child = launch("");
        static_cast<void>(child.process->isRunning());
        child.process->terminate();
        child.process->waitUntilExit();
    }
    int status = 0;
    ASSERT_EQ(::waitpid(stranger, &status, 0), stranger);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 42);
}

TEST_F(ChildProcessEnd, LetsAnyThreadAskAndEndItWhileAnotherWaits) {
    constexpr int kRounds = 1000;
    std::mutex mutex;
    std::shared_ptr<ChildProcess> current;
    std::atomic<bool> over = false;
    // Each holds a reference of its own and may well be the last to drop it.
    const auto keepDoing = [&](void (*act)(ChildProcess&)) {
        return [&, act] {
            while (!over) {
                std::unique_lock lock(mutex);
                const std::shared_ptr<ChildProcess> child = current;
                lock.unlock();
                if (child) {
                    act(*child);
                }
                std::this_thread::yield();
            }
        };
    };
    std::thread asker(keepDoing([](ChildProcess& child) { static_cast<void>(child.isRunning()); }));
    std::thread ender(keepDoing([](ChildProcess& child) { child.terminate(); }));
    for (int round = 0; round < kRounds; ++round) {
        const LaunchedChild child = launch("");
        {
            const std::lock_guard lock(mutex);
            current = child.process;
        }
        if (round % 2 == 0) {
            child.process->waitUntilExit();
            EXPECT_FALSE(child.process->isRunning());
        }
    }
    over = true;
    asker.join();
    ender.join();
    current.reset();
    EXPECT_TRUE(waitFor([] { return !hasChildren(); }));
}

TEST_F(ChildProcessEnd, LeavesEverythingAsItWasAfterHundredsOfRuns) {
    const std::vector<int> before = openDescriptors();
    for (int i = 0; i < 250; ++i) {
        LaunchedChild child = launch("print x");
        ASSERT_EQ(child.finish(), "x");
        const LaunchedChild failed = launchCommand({"/no/such/program", {}, {}});
        ASSERT_EQ(failed.process, nullptr);
    }
    EXPECT_EQ(openDescriptors(), before);
    EXPECT_FALSE(hasChildren());
}

}  // namespace
}  // namespace veltrix::test
