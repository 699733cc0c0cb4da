// The limits on requests and on closing, to the millisecond, and what a process that ignores them
// does to everything behind it.
#include "SetupIPCFixture.h"
#include "support/Processes.h"
#include "support/TempFolder.h"
#include "support/WaitFor.h"

#include <signal.h>

#include <string>
#include <vector>

namespace veltrix::test {
namespace {

using std::chrono::hours;
using std::chrono::milliseconds;
using std::chrono::seconds;
using Limits = std::vector<milliseconds>;

class SetupIPCLimits : public SetupIPCTest {
  protected:
    // A request without an answer runs into exactly this limit.
    void expectLimit(const std::string& action, seconds limit) {
        SCOPED_TRACE(action);
        const std::size_t before = received().size();
        firstRun(kReadOneRequestAndHang);
        request(action);
        ASSERT_TRUE(awaitReceived(before + 1));
        EXPECT_EQ(clock.pending(), Limits{limit});
        clock.advance(limit - milliseconds(1));
        EXPECT_EQ(clock.pending(), Limits{milliseconds(1)});
        clock.advance(milliseconds(1));
        ASSERT_TRUE(awaitArrivals(arrivals().size() + 1));
        EXPECT_EQ(arrivals().back().reply, setupFailureReply());
        EXPECT_EQ(clock.pending(), Limits());
        ASSERT_TRUE(awaitExit(report().pid));
    }
};

TEST_F(SetupIPCLimits, AreSixtySecondsForTheLogin) {
    expectLimit("password.configure", seconds(60));
}

TEST_F(SetupIPCLimits, AreTwentySecondsForEveryOtherAction) {
    for (const char* action : {"tls.configure", "enrollment.start", "enrollment.poll",
                               "enrollment.resume", "enrollment.renew"}) {
        expectLimit(action, seconds(20));
    }
}

TEST_F(SetupIPCLimits, AreTwentySecondsForNearMissesOfTheLogin) {
    for (const char* action : {"", "password", "Password.configure", "password.configure ",
                               " password.configure", "password.configure2"}) {
        expectLimit(action, seconds(20));
    }
}

TEST_F(SetupIPCLimits, AlsoEndAWriteThatTheProcessDoesNotRead) {
    const std::string reading = resources.scratch("reading");
    firstRun("read-bytes 70000\ntouch " + reading + "\nhang\n");
    request("password.configure", {{"password", Json(std::string(1'000'000, 'p'))}});
    ASSERT_TRUE(awaitFile(reading)) << "more was written than a pipe holds, and not yet all";
    EXPECT_EQ(clock.pending(), Limits{seconds(60)});
    clock.advance(seconds(60));
    ASSERT_TRUE(awaitArrivals(1));
    EXPECT_EQ(arrivals().back().reply, setupFailureReply());
}

TEST_F(SetupIPCLimits, StartWithTheRequestAndNotWithTheProcess) {
    firstRun("answer {\"code\":\"a\"}\\n\nanswer\nhang\n");
    static_cast<void>(ask("enrollment.poll"));
    clock.advance(hours(5));
    request("enrollment.poll");
    ASSERT_TRUE(awaitReceived(2));
    EXPECT_EQ(clock.pending(), Limits{seconds(20)});
    clock.advance(seconds(20));
    ASSERT_TRUE(awaitArrivals(2));
}

TEST_F(SetupIPCLimits, AreGoneOnceTheReplyIsThere) {
    const std::string terminations = resources.scratch("terminations");
    firstRun("count-terminates " + terminations + "\nanswer {}\\n\nanswer [\\n\n" + "answer " +
             std::string(8193, 'x') + "\necho-all\n");
    for (int request = 0; request < 3; ++request) {
        static_cast<void>(ask("password.configure"));
        EXPECT_EQ(clock.pending(), Limits());
    }
    EXPECT_EQ(dispatcher.armed(), (Limits{seconds(60), seconds(60), seconds(60)}));
    clock.advance(hours(1));
    closeAndWait();
    EXPECT_EQ(clock.pending(), Limits());
    clock.advance(hours(1));
    EXPECT_EQ(contentsOf(terminations), "");
}

TEST_F(SetupIPCLimits, LetTheLastWordsOfTheProcessCount) {
    firstRun("on-terminate {\"code\":\"late\"}\\n\nanswer\nhang\n");
    request("enrollment.poll");
    ASSERT_TRUE(awaitReceived(1));
    clock.advance(seconds(20));
    ASSERT_TRUE(awaitArrivals(1));
    EXPECT_EQ(arrivals().back().reply, (Reply{{"code", Json("late")}}));
}

TEST_F(SetupIPCLimits, OnClosingAreFiveSeconds) {
    const std::string ended = resources.scratch("ended");
    firstRun("echo-all\ntouch " + ended + "\nhang\n");
    static_cast<void>(ask("enrollment.poll"));
    close();
    ASSERT_TRUE(awaitFile(ended)) << "the process must see the end of its input";
    ASSERT_TRUE(clock.waitForPending(1));
    EXPECT_EQ(clock.pending(), Limits{seconds(5)});
    clock.advance(milliseconds(4999));
    EXPECT_EQ(clock.pending(), Limits{milliseconds(1)});
    EXPECT_EQ(arrivals().size(), 1U);
    clock.advance(milliseconds(1));
    ASSERT_TRUE(awaitArrivals(2));
    EXPECT_FALSE(processExists(report().pid)) << "it has exited and was reaped";
}

TEST_F(SetupIPCLimits, AreWaitedForByNobodyWhenTheProcessExitsAtTheEndOfInput) {
    firstRun(kEchoEveryRequest);
    static_cast<void>(ask("enrollment.poll"));
    closeAndWait();
    EXPECT_EQ(dispatcher.armed(), (Limits{seconds(20), seconds(5)}));
    EXPECT_EQ(clock.pending(), Limits());
}

class SetupIPCStubbornProcess : public SetupIPCTest {
  protected:
    // Every SIGTERM leaves one byte here.
    const std::string terminations = resources.scratch("terminations");

    [[nodiscard]] bool awaitTermination() const {
        return waitFor([this] { return !contentsOf(terminations).empty(); });
    }

    // Nothing but the one request to terminate ever comes, however long it takes.
    void expectNothingMoreHappens(std::size_t arrivalsSoFar) {
        for (int hour = 0; hour < 24; ++hour) {
            clock.advance(hours(1));
        }
        EXPECT_EQ(clock.pending(), Limits());
        EXPECT_TRUE(processExists(report().pid));
        EXPECT_EQ(contentsOf(terminations), "T");
        EXPECT_EQ(arrivals().size(), arrivalsSoFar);
    }
};

TEST_F(SetupIPCStubbornProcess, KeepsItsRequestAndEverythingBehindItWaiting) {
    firstRun("count-terminates " + terminations + "\nanswer\nhang\n");
    request("enrollment.poll");
    ASSERT_TRUE(awaitReceived(1));
    const pid_t pid = report().pid;
    clock.advance(seconds(20));
    ASSERT_TRUE(awaitTermination());
    close();
    request("enrollment.renew");
    expectNothingMoreHappens(0);

    firstRun(kEchoEveryRequest);
    kill(pid);
    ASSERT_TRUE(awaitArrivals(3));
    EXPECT_EQ(arrivals()[0].reply, setupFailureReply());
    EXPECT_FALSE(arrivals()[1].isReply);
    EXPECT_EQ(arrivals()[2].reply.at("action"), Json("enrollment.renew"));
    EXPECT_EQ(contentsOf(terminations), "T");
}

TEST_F(SetupIPCStubbornProcess, KeepsItsClosingAndEverythingBehindItWaiting) {
    firstRun("count-terminates " + terminations + "\necho-all\nhang\n");
    static_cast<void>(ask("enrollment.poll"));
    const pid_t pid = report().pid;
    close();
    ASSERT_TRUE(clock.waitForPending(1));
    clock.advance(seconds(5));
    ASSERT_TRUE(awaitTermination());
    request("enrollment.renew");
    expectNothingMoreHappens(1);

    firstRun(kEchoEveryRequest);
    kill(pid);
    ASSERT_TRUE(awaitArrivals(3));
    EXPECT_FALSE(arrivals()[1].isReply);
    EXPECT_EQ(arrivals()[2].reply.at("action"), Json("enrollment.renew"));
}

TEST_F(SetupIPCStubbornProcess, IsStillOfUseWhenItAnswersAtLast) {
    const std::string go = resources.scratch("go");
    firstRun("count-terminates " + terminations + "\nanswer\nawait " + go +
             "\nprint {\"late\":true}\\n\necho-all\n");
    request("enrollment.poll");
    ASSERT_TRUE(awaitReceived(1));
    const pid_t pid = report().pid;
    clock.advance(seconds(20));
    ASSERT_TRUE(awaitTermination());
    expectNothingMoreHappens(0);
    touch(go);
    ASSERT_TRUE(awaitArrivals(1));
    EXPECT_EQ(arrivals()[0].reply, (Reply{{"late", Json(true)}}));
    EXPECT_EQ(ask("enrollment.renew").at("action"), Json("enrollment.renew"));
    EXPECT_EQ(report().pid, pid);
}

TEST_F(SetupIPCStubbornProcess, ThatIsStoppedEndsWhenItGoesOn) {
    firstRun("answer\nstop\nhang\n");
    request("enrollment.poll");
    ASSERT_TRUE(awaitReceived(1));
    const pid_t pid = report().pid;
    ASSERT_TRUE(awaitStop(pid));
    clock.advance(seconds(20));
    EXPECT_EQ(arrivals().size(), 0U);
    EXPECT_TRUE(processExists(pid));
    ASSERT_EQ(::kill(pid, SIGCONT), 0);
    ASSERT_TRUE(awaitArrivals(1));
    EXPECT_EQ(arrivals()[0].reply, setupFailureReply());
}

}  // namespace
}  // namespace veltrix::test
