#include "gnustep/application/InstanceRegistry.h"

#include "support/TempFolder.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <memory>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

using veltrix::gnustep::InstanceRegistry;
using veltrix::test::TempFolder;

namespace {

struct InstanceRegistryTest : ::testing::Test {
    [[nodiscard]] std::unique_ptr<InstanceRegistry>
    entered(const std::string& identifier = "example.program") const {
        auto registry = std::make_unique<InstanceRegistry>(folder.path(), identifier);
        EXPECT_TRUE(registry->enter());
        return registry;
    }

    // Enters in a process of its own, which then waits to be killed.
    [[nodiscard]] pid_t enterElsewhere() const {
        int ready[2];
        EXPECT_EQ(pipe(ready), 0);
        const pid_t child = fork();
        if (child == 0) {
            InstanceRegistry registry(folder.path(), "example.program");
            const char answer = registry.enter() ? 'y' : 'n';
            (void)!write(ready[1], &answer, 1);
            for (;;)
                pause();
        }
        char answer = 0;
        EXPECT_EQ(read(ready[0], &answer, 1), 1);
        EXPECT_EQ(answer, 'y');
        close(ready[0]);
        close(ready[1]);
        return child;
    }

    static void killAndReap(pid_t child) {
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
    }

    [[nodiscard]] std::size_t filesLeft() const {
        const std::filesystem::path own = folder.path("example.program");
        return static_cast<std::size_t>(
            std::distance(std::filesystem::directory_iterator(own), {}));
    }

    const TempFolder folder;
};

TEST_F(InstanceRegistryTest, AProcessSeesItself) {
    const auto registry = entered();
    const auto running = registry->running();
    ASSERT_EQ(running.size(), 1U);
    EXPECT_EQ(running[0].pid, getpid());
}

TEST_F(InstanceRegistryTest, OthersAreListedInTheOrderInWhichTheyEntered) {
    const pid_t first = enterElsewhere();
    const auto registry = entered();
    const pid_t third = enterElsewhere();
    const auto running = registry->running();
    ASSERT_EQ(running.size(), 3U);
    EXPECT_EQ(running[0].pid, first);
    EXPECT_EQ(running[1].pid, getpid());
    EXPECT_EQ(running[2].pid, third);
    killAndReap(first);
    killAndReap(third);
}

TEST_F(InstanceRegistryTest, WhatAKilledProcessLeavesIsClearedAway) {
    const pid_t other = enterElsewhere();
    const auto registry = entered();
    killAndReap(other);
    EXPECT_EQ(registry->running().size(), 1U);
    EXPECT_EQ(filesLeft(), 2U);
}

TEST_F(InstanceRegistryTest, AStaleFileWithTheNumberOfALivingProcessIsStale) {
    const auto registry = entered();
    folder.write("example.program/000000000001.000000000-" + std::to_string(getppid()), "");
    EXPECT_EQ(registry->running().size(), 1U);
}

TEST_F(InstanceRegistryTest, WhatAProcessLeavesThatWasKilledWhileItEnteredIsClearedAway) {
    const auto registry = entered();
    folder.write("example.program/.000000000001.000000000-4001", "");
    folder.write("example.program/000000000001.000000000-4002.socket", "");
    folder.write("example.program/999999999999.000000000-4003.socket", "");
    EXPECT_EQ(registry->running().size(), 1U);
    EXPECT_EQ(filesLeft(), 2U);
}

TEST_F(InstanceRegistryTest, AProcessThatIsJustEnteringIsLeftAlone) {
    const auto registry = entered();
    const std::string now = registry->running()[0].name;
    folder.write("example.program/." + now + "1", "");
    folder.write("example.program/" + now + "2.socket", "");
    EXPECT_EQ(registry->running().size(), 1U);
    EXPECT_EQ(filesLeft(), 4U);
}

TEST_F(InstanceRegistryTest, AFileThatIsNoneOfOursIsLeftAlone) {
    const auto registry = entered();
    const std::string foreign = folder.write("example.program/notes.txt", "x");
    EXPECT_EQ(registry->running().size(), 1U);
    EXPECT_TRUE(std::filesystem::exists(foreign));
}

TEST_F(InstanceRegistryTest, LeavingTakesEverythingAlong) {
    auto registry = entered();
    registry = nullptr;
    EXPECT_EQ(filesLeft(), 0U);
}

TEST_F(InstanceRegistryTest, AForkedChildDoesNotLeaveForItsParent) {
    auto registry = entered();
    const pid_t child = fork();
    if (child == 0) {
        registry = nullptr;
        _exit(0);
    }
    waitpid(child, nullptr, 0);
    EXPECT_EQ(registry->running().size(), 1U);
}

TEST_F(InstanceRegistryTest, ProgramsWithOtherIdentifiersAreNotSeen) {
    const auto registry = entered();
    const auto other = entered("example.program.other");
    EXPECT_EQ(registry->running().size(), 1U);
    EXPECT_EQ(other->running().size(), 1U);
}

TEST_F(InstanceRegistryTest, AnyIdentifierMakesAFolderInside) {
    const auto registry = entered("../..//.hidden name");
    EXPECT_EQ(registry->running().size(), 1U);
    EXPECT_TRUE(std::filesystem::exists(folder.path("%2e%2e/..")) == false);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 1);
}

TEST_F(InstanceRegistryTest, ActivationReachesTheInstanceItIsSentTo) {
    const auto first = entered();
    const auto second = entered();
    const auto running = second->running();
    ASSERT_EQ(running.size(), 2U);
    EXPECT_FALSE(first->takeActivations());
    EXPECT_TRUE(second->sendActivation(running[0]));
    EXPECT_TRUE(first->takeActivations());
    EXPECT_FALSE(first->takeActivations());
    EXPECT_FALSE(second->takeActivations());
}

TEST_F(InstanceRegistryTest, ActivationOfOneThatHasLeftIsRefused) {
    auto first = entered();
    const auto second = entered();
    const auto gone = second->running()[0];
    first = nullptr;
    EXPECT_FALSE(second->sendActivation(gone));
}

TEST_F(InstanceRegistryTest, FoldersTooDeepForASocketAddressWork) {
    const std::string deep = folder.makeFolder(std::string(200, 'd'));
    InstanceRegistry registry(deep, "example.program");
    ASSERT_TRUE(registry.enter());
    EXPECT_TRUE(registry.sendActivation(registry.running()[0]));
    EXPECT_TRUE(registry.takeActivations());
}

TEST_F(InstanceRegistryTest, AFolderThatCannotBeWrittenIsSaid) {
    InstanceRegistry registry(folder.path("missing"), "example.program");
    EXPECT_FALSE(registry.enter());
}

struct RuntimeFolderTest : ::testing::Test {
    RuntimeFolderTest() : runtime_(std::getenv("XDG_RUNTIME_DIR")) {
        setenv("TMPDIR", folder.path().c_str(), 1);
    }
    ~RuntimeFolderTest() override {
        setenv("XDG_RUNTIME_DIR", runtime_.c_str(), 1);
        unsetenv("TMPDIR");
    }

    const TempFolder folder;

  private:
    std::string runtime_;
};

TEST_F(RuntimeFolderTest, IsTheUsersRuntimeFolderIfItIsPrivate) {
    const std::string given = folder.makeFolder("run");
    chmod(given.c_str(), 0700);
    setenv("XDG_RUNTIME_DIR", given.c_str(), 1);
    EXPECT_EQ(InstanceRegistry::runtimeFolder(), given + "/appkit-instances");
}

TEST_F(RuntimeFolderTest, IsAPrivateOneAmongTemporaryFilesOtherwise) {
    const std::string open = folder.makeFolder("open");
    chmod(open.c_str(), 0755);
    for (const char* unusable : {"relative/path", "/nonexistent", open.c_str()}) {
        setenv("XDG_RUNTIME_DIR", unusable, 1);
        const auto found = InstanceRegistry::runtimeFolder();
        ASSERT_TRUE(found);
        EXPECT_EQ(found->rfind(folder.path() + "/appkit-instances-", 0), 0U) << *found;
        EXPECT_EQ(std::filesystem::status(*found).permissions(), std::filesystem::perms::owner_all);
    }
}

TEST_F(RuntimeFolderTest, IsNotOneThatSomebodyElseCanWrite) {
    unsetenv("XDG_RUNTIME_DIR");
    const std::string ours = folder.makeFolder("appkit-instances-" + std::to_string(geteuid()));
    chmod(ours.c_str(), 0777);
    EXPECT_FALSE(InstanceRegistry::runtimeFolder());
}

}  // namespace
