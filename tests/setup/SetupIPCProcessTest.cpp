// When the channel starts the first-run process, and what that process is given.
#include "SetupIPCFixture.h"
#include "support/Processes.h"
#include "support/TempFolder.h"

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

namespace veltrix::test {
namespace {

using std::chrono::seconds;

class SetupIPCProcess : public SetupIPCTest {};

TEST_F(SetupIPCProcess, IsNotStartedByMakingOrClosingTheChannel) {
    firstRun(kEchoEveryRequest);
    closeAndWait();
    EXPECT_FALSE(hasChildren());
    EXPECT_EQ(openDescriptors(), descriptorsBefore);
}

TEST_F(SetupIPCProcess, IsStartedByTheFirstRequestOnTheQueueOfTheChannel) {
    firstRun(kEchoEveryRequest);
    EXPECT_EQ(ask("enrollment.poll"),
              (Reply{{"action", Json("enrollment.poll")}, {"values", Json(Json::Object())}}));
    EXPECT_EQ(report().parent, ::getpid());
    EXPECT_EQ(dispatcher.labels(), std::vector<std::string>{"veltrix.desktop.setup"});
}

TEST_F(SetupIPCProcess, ServesManyRequests) {
    firstRun(kEchoEveryRequest);
    static_cast<void>(ask("enrollment.start"));
    const pid_t pid = report().pid;
    for (const char* action : {"enrollment.poll", "enrollment.poll", "tls.configure"}) {
        static_cast<void>(ask(action));
        EXPECT_EQ(report().pid, pid);
    }
    EXPECT_EQ(received().size(), 4U);
}

TEST_F(SetupIPCProcess, IsStartedAnewAfterClosing) {
    firstRun(kEchoEveryRequest);
    static_cast<void>(ask("enrollment.poll"));
    const pid_t pid = report().pid;
    closeAndWait();
    EXPECT_EQ(ask("enrollment.renew").at("action"), Json("enrollment.renew"));
    EXPECT_NE(report().pid, pid);
}

TEST_F(SetupIPCProcess, IsStartedAnewAfterALimitEndedIt) {
    firstRun(kReadOneRequestAndHang);
    request("enrollment.poll");
    ASSERT_TRUE(awaitReceived(1));
    const pid_t pid = report().pid;
    firstRun(kEchoEveryRequest);
    clock.advance(seconds(20));
    ASSERT_TRUE(awaitArrivals(1));
    ASSERT_TRUE(awaitExit(pid));
    EXPECT_EQ(ask("enrollment.renew").at("action"), Json("enrollment.renew"));
    EXPECT_NE(report().pid, pid);
}

TEST_F(SetupIPCProcess, IsStartedAnewAfterItCrashed) {
    firstRun(kEchoEveryRequest);
    for (int crash = 0; crash < 3; ++crash) {
        EXPECT_EQ(ask("enrollment.poll").at("action"), Json("enrollment.poll"));
        kill(report().pid);
    }
    const pid_t pid = report().pid;
    EXPECT_EQ(ask("enrollment.renew").at("action"), Json("enrollment.renew"));
    EXPECT_NE(report().pid, pid);
}

TEST_F(SetupIPCProcess, IsStartedAnewAfterItExitedByItself) {
    firstRun("answer {\"run\":1}\\n\n");
    EXPECT_EQ(ask("enrollment.poll"), (Reply{{"run", Json(1.0)}}));
    ASSERT_TRUE(awaitExit(report().pid));
    firstRun("answer-all {\"run\":2}\\n\n");
    EXPECT_EQ(ask("enrollment.poll"), (Reply{{"run", Json(2.0)}}));
}

TEST_F(SetupIPCProcess, HasOldPipesNoMoreWhenItIsStartedAnew) {
    // What the first one printed beyond its reply must not be the second one's reply.
    firstRun("answer {\"run\":1}\\n{\"stale\":true}\\n\n");
    EXPECT_EQ(ask("enrollment.poll"), (Reply{{"run", Json(1.0)}}));
    ASSERT_TRUE(awaitExit(report().pid));
    firstRun("answer-all {\"run\":2}\\n\n");
    EXPECT_EQ(ask("enrollment.poll"), (Reply{{"run", Json(2.0)}}));
}

TEST_F(SetupIPCProcess, GetsScriptAndHomeAsItsArgumentsAndNothingElse) {
    firstRun(kEchoEveryRequest);
    static_cast<void>(ask("enrollment.poll"));
    EXPECT_EQ(
        report().arguments,
        (std::vector<std::string>{resources.node(), resources.folder() + "/desktop/first-run.mjs",
                                  "--home", home}));
}

TEST_F(SetupIPCProcess, GetsAnyHomeByteForByte) {
    firstRun(kEchoEveryRequest);
    for (const char* odd : {"", " ", "--help", "-", "/a b/'c'/\"d\"/$HOME/%s/\\n/`id`/*",
                            "/h\u00F6me/\u20AC/", "a//b/", "/line\nfeed\ttab", "\xFF\xFE"}) {
        home = odd;
        channel = makeChannel(resources.node());
        static_cast<void>(ask("enrollment.poll"));
        EXPECT_EQ(report().arguments.back(), odd);
        EXPECT_EQ(report().arguments.size(), 4U);
        closeAndWait();
    }
}

TEST_F(SetupIPCProcess, IsFoundUnderAnyNameOfExecutableAndResourceFolder) {
    const std::string odd = resources.scratch("o'dd \"$PATH\" %s \\ \u00E9 ");
    std::filesystem::create_directories(odd + "/desktop");
    const std::string executable = odd + "/-node 22";
    std::filesystem::create_symlink(fixtureChild(), executable);
    firstRun(kEchoEveryRequest);
    std::filesystem::copy(resources.folder() + "/desktop/first-run.mjs",
                          odd + "/desktop/first-run.mjs");
    channel = SetupIPC::make(executable, home,
                             {dispatcher, [odd] { return odd; }, [this] { return environment; }});
    EXPECT_EQ(ask("enrollment.poll").at("action"), Json("enrollment.poll"));
    EXPECT_EQ(report().arguments, (std::vector<std::string>{
                                      executable, odd + "/desktop/first-run.mjs", "--home", home}));
}

TEST_F(SetupIPCProcess, InheritsTheWorkingFolder) {
    firstRun(kEchoEveryRequest);
    static_cast<void>(ask("enrollment.poll"));
    EXPECT_EQ(report().folder, std::filesystem::current_path().string());
}

TEST_F(SetupIPCProcess, GetsTheSevenNamesInAnyLetterCaseAndNothingElse) {
    const std::vector<std::string> listed{"PATH=/usr/bin:/bin",  "lang=C",
                                          "Path=/odd",           "HOME=",
                                          "User=a=b=",           "LOGNAME=line\nfeed",
                                          "LC_ALL=\xFF\xFE\x80", "tmpDIR= /tmp ",
                                          "LANG=de_DE.UTF-8"};
    environment = {"DOCKER_HOST=tcp://dvr",
                   "DOCKER_CONTEXT=x",
                   "DOCKER_CONFIG=x",
                   "DOCKER_TLS_VERIFY=1",
                   "DOCKER_CERT_PATH=/x",
                   "NODE_OPTIONS=--inspect",
                   "LD_PRELOAD=/none.so",
                   "DYLD_INSERT_LIBRARIES=/none.dylib",
                   "SSL_CERT_FILE=/x",
                   "SHELL=/bin/sh",
                   "LC_CTYPE=C",
                   "PATHS=x",
                   "XPATH=x",
                   "PAT=x",
                   "U\u017FER=x",
                   " PATH=x",
                   "PATH =x",
                   "=PATH",
                   "PATH",
                   "",
                   "="};
    environment.insert(environment.begin() + 5, listed.begin(), listed.end());
    firstRun(kEchoEveryRequest);
    static_cast<void>(ask("enrollment.poll"));
    EXPECT_EQ(report().environment, listed);
}

TEST_F(SetupIPCProcess, GetsAnEmptyEnvironmentWhenNothingIsListed) {
    environment = {"DOCKER_HOST=tcp://dvr"};
    firstRun(kEchoEveryRequest);
    static_cast<void>(ask("enrollment.poll"));
    EXPECT_EQ(report().environment, std::vector<std::string>());
}

TEST_F(SetupIPCProcess, GetsTheEnvironmentOfTheMomentItIsStarted) {
    firstRun(kEchoEveryRequest);
    static_cast<void>(ask("enrollment.poll"));
    closeAndWait();
    environment = {"LANG=later"};
    static_cast<void>(ask("enrollment.poll"));
    EXPECT_EQ(report().environment, std::vector<std::string>{"LANG=later"});
}

TEST_F(SetupIPCProcess, GetsThreeDescriptorsDefaultSignalsAndAGroupOfItsOwn) {
    firstRun(kEchoEveryRequest);
    static_cast<void>(ask("enrollment.poll"));
    const ChildReport seen = report();
    EXPECT_EQ(seen.descriptors, (std::vector<int>{0, 1, 2}));
    EXPECT_EQ(seen.handledSignals, std::vector<int>());
    EXPECT_EQ(seen.blockedSignals, std::vector<int>());
    EXPECT_EQ(seen.group, seen.pid);
}

TEST_F(SetupIPCProcess, MayComplainWithoutEnd) {
    firstRun("answer\nfill-errors 10000000\nprint {\"done\":true}\\n\necho-all\n");
    EXPECT_EQ(ask("enrollment.poll"), (Reply{{"done", Json(true)}}));
}

// A failure leaves the channel, the next request and the closing usable.
class SetupIPCLaunchFailure : public SetupIPCTest {
  protected:
    void expectFailure(const std::string& executable) {
        SCOPED_TRACE(executable);
        channel = makeChannel(executable);
        EXPECT_EQ(ask("password.configure"), setupFailureReply());
        EXPECT_FALSE(hasChildren());
        EXPECT_EQ(dispatcher.armed(), std::vector<std::chrono::milliseconds>());
        closeAndWait();
        EXPECT_EQ(dispatcher.armed(), std::vector<std::chrono::milliseconds>());
        EXPECT_EQ(openDescriptors(), descriptorsBefore);
    }
};

TEST_F(SetupIPCLaunchFailure, IsAFailureReplyAndArmsNoLimit) {
    firstRun(kEchoEveryRequest);
    const TempFolder folder;
    expectFailure("");
    expectFailure(folder.path("missing"));
    expectFailure(folder.path());
    expectFailure(folder.write("plain", "#!/bin/sh\n", 0600));
    expectFailure(folder.write("wordless", "echo\n", 0700));
    expectFailure(folder.write("foreign",
                               "\x7F"
                               "ELF\x02\x01\x01",
                               0700));
    expectFailure(folder.write("orphaned", "#!/no/such/interpreter\n", 0700));
}

TEST_F(SetupIPCLaunchFailure, IsNeverSearchedForOnThePath) {
    environment = {"PATH=" + std::filesystem::path(resources.node()).parent_path().string()};
    firstRun(kEchoEveryRequest);
    expectFailure("node");
}

TEST_F(SetupIPCLaunchFailure, IsOverAsSoonAsTheProgramIsThere) {
    firstRun(kEchoEveryRequest);
    channel = makeChannel(resources.scratch("late"));
    EXPECT_EQ(ask("enrollment.poll"), setupFailureReply());
    std::filesystem::create_symlink(fixtureChild(), resources.scratch("late"));
    EXPECT_EQ(ask("enrollment.poll").at("action"), Json("enrollment.poll"));
}

TEST_F(SetupIPCLaunchFailure, OfAScriptThatIsMissingIsAFailureReply) {
    EXPECT_EQ(ask("enrollment.poll"), setupFailureReply());
    closeAndWait();
    firstRun(kEchoEveryRequest);
    EXPECT_EQ(ask("enrollment.poll").at("action"), Json("enrollment.poll"));
}

TEST_F(SetupIPCLaunchFailure, AfterACrashKeepsTheOldProcessAndReplacesThePipes) {
    firstRun(kEchoEveryRequest);
    const std::string executable = resources.scratch("node");
    std::filesystem::create_symlink(fixtureChild(), executable);
    channel = makeChannel(executable);
    static_cast<void>(ask("enrollment.poll"));
    kill(report().pid);
    const std::size_t open = openDescriptors().size();

    std::filesystem::remove(executable);
    for (int attempt = 0; attempt < 20; ++attempt) {
        EXPECT_EQ(ask("enrollment.poll"), setupFailureReply());
        EXPECT_EQ(openDescriptors().size(), open);
    }
    EXPECT_EQ(dispatcher.armed(), std::vector<std::chrono::milliseconds>{seconds(20)});

    // A process is still there for closing to wait for, though only the one that has gone.
    closeAndWait();
    EXPECT_EQ(dispatcher.armed(),
              (std::vector<std::chrono::milliseconds>{seconds(20), seconds(5)}));
    EXPECT_EQ(openDescriptors(), descriptorsBefore);

    std::filesystem::create_symlink(fixtureChild(), executable);
    EXPECT_EQ(ask("enrollment.renew").at("action"), Json("enrollment.renew"));
}

}  // namespace
}  // namespace veltrix::test
