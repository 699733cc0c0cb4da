// The time limit of an operator script, to the millisecond, and what keeps a run waiting.
#include "core/ActionJobFixture.h"

#include "common/Files.h"
#include "support/Processes.h"

namespace veltrix::test {
namespace {

using namespace std::chrono_literals;
using Delays = std::vector<std::chrono::milliseconds>;

class ActionJobLimit : public ActionJobTest {
  protected:
    // Starts a script that counts the requests to end, and returns once the limit is armed and
    // the script is about to carry out `steps`.
    [[nodiscard]] std::unique_ptr<RunningJob> start(const std::string& steps) {
        auto job = std::make_unique<RunningJob>(jobFor(steps), clock);
        EXPECT_TRUE(clock.waitForPending(1));
        EXPECT_TRUE(waitFor([this] { return fileExists(path("ready")); }));
        return job;
    }

    [[nodiscard]] std::string requests() const { return contentsOf(path("requests")); }

    const std::string countRequests =
        "count-terminates " + path("requests") + "\ntouch " + path("ready") + "\n";
    const std::string awaitGo = "await " + path("go") + "\n";
};

TEST_F(ActionJobLimit, AsksTheScriptToEndOnceAfterExactly200Seconds) {
    const auto job = start(countRequests + awaitGo + std::string(kPrintStarted));
    EXPECT_EQ(clock.pending(), Delays{200s});
    clock.advance(199'999ms);
    EXPECT_EQ(clock.pending(), Delays{1ms});
    EXPECT_EQ(requests(), "");
    clock.advance(1ms);
    EXPECT_TRUE(waitFor([this] { return requests() == "T"; }));
    EXPECT_EQ(clock.pending(), Delays()) << "nothing stronger is to follow";
    clock.advance(24h);
    EXPECT_FALSE(job->done()) << "a script that goes on keeps the job waiting";
    touch("go");
    EXPECT_EQ(job->awaitReply(), startedReply()) << "and its reply still counts";
    EXPECT_EQ(requests(), "T");
}

TEST_F(ActionJobLimit, KeepsWaitingForAScriptThatIgnoresIt) {
    const auto job = start("ignore-terminate\ntouch " + path("ready") + "\n" + awaitGo +
                           std::string(kPrintStarted));
    clock.advance(200s);
    EXPECT_EQ(clock.pending(), Delays());
    clock.advance(24h);
    EXPECT_FALSE(job->done());
    touch("go");
    EXPECT_EQ(job->awaitReply(), startedReply());
}

TEST_F(ActionJobLimit, EndsAScriptThatHangs) {
    const auto job = start("touch " + path("ready") + "\nhang");
    clock.advance(200s);
    EXPECT_EQ(job->awaitReply(), incompleteReply());
    EXPECT_FALSE(hasChildren());
}

TEST_F(ActionJobLimit, UsesTheCompleteReplyOfAScriptThatItEnded) {
    const auto job = start(std::string(kPrintStarted) + "touch " + path("ready") + "\nhang");
    EXPECT_FALSE(job->done());
    clock.advance(200s);
    EXPECT_EQ(job->awaitReply(), startedReply());
}

TEST_F(ActionJobLimit, HasNoUseForHalfAReply) {
    const auto job = start("print {\"ok\":true,\ntouch " + path("ready") + "\nhang");
    clock.advance(200s);
    EXPECT_EQ(job->awaitReply(), incompleteReply());
}

TEST_F(ActionJobLimit, UsesWhatTheScriptPrintsWhenItIsAskedToEnd) {
    const auto job =
        start("on-terminate {\"ok\":true,\"code\":\"started\"}\ntouch " + path("ready") + "\nhang");
    clock.advance(200s);
    EXPECT_EQ(job->awaitReply(), startedReply());
}

TEST_F(ActionJobLimit, IsCalledOffWhenTheScriptIsDone) {
    const auto job = start(countRequests + awaitGo + std::string(kPrintStarted));
    clock.advance(199s);
    touch("go");
    EXPECT_EQ(job->awaitReply(), startedReply());
    EXPECT_EQ(clock.pending(), Delays());
    clock.advance(10s);
    EXPECT_EQ(requests(), "");
}

TEST_F(ActionJobLimit, IsCalledOffForEveryEndOfAScript) {
    for (const std::string steps : {"", "exit 1", "die", "print [", "fill 100000"}) {
        EXPECT_EQ(run(steps), incompleteReply()) << steps;
        EXPECT_EQ(clock.pending(), Delays()) << steps;
    }
}

TEST_F(ActionJobLimit, CountsFromTheEndOfTheInput) {
    RunningJob job(jobFor("touch " + path("ready") + "\n" + awaitGo + "read-input " +
                              path("input") + "\ntouch " + path("read") + "\nawait " + path("end") +
                              "\n" + std::string(kPrintStarted),
                          std::string(1'000'000, 'p')),
                   clock);
    ASSERT_TRUE(waitFor([this] { return fileExists(path("ready")); }));
    EXPECT_EQ(clock.pending(), Delays());
    clock.advance(1h);
    touch("go");
    ASSERT_TRUE(waitFor([this] { return fileExists(path("read")); }));
    ASSERT_TRUE(clock.waitForPending(1));
    EXPECT_EQ(clock.pending(), Delays{200s});
    touch("end");
    EXPECT_EQ(job.awaitReply(), startedReply());
}

TEST_F(ActionJobLimit, CoversAScriptThatHasEndedItsOutputAndLivesOn) {
    const auto job = start(std::string(kPrintStarted) + "close-output\n" + countRequests + awaitGo);
    EXPECT_FALSE(job->done()) << "the job waits for the exit, too";
    EXPECT_EQ(clock.pending(), Delays{200s});
    clock.advance(200s);
    EXPECT_TRUE(waitFor([this] { return requests() == "T"; }));
    EXPECT_FALSE(job->done());
    touch("go");
    EXPECT_EQ(job->awaitReply(), startedReply());
}

TEST_F(ActionJobLimit, CannotReachADescendantThatKeepsTheOutputOpen) {
    const auto job = start(std::string(kPrintStarted) + "descend " + path("release") + "\ntouch " +
                           path("ready"));
    // The script itself has gone, or is about to go; its descendant holds the pipe.
    EXPECT_FALSE(job->done());
    EXPECT_EQ(clock.pending(), Delays{200s});
    clock.advance(200s);
    EXPECT_EQ(clock.pending(), Delays());
    clock.advance(24h);
    EXPECT_FALSE(job->done()) << "until the descendant lets go, there is no end of output";
    touch("release");
    EXPECT_EQ(job->awaitReply(), startedReply());
}

TEST_F(ActionJobLimit, IsHarmlessInTheVeryMomentOfTheExit) {
    for (int round = 0; round < 100; ++round) {
        RunningJob job(jobFor(kPrintStarted), clock);
        ASSERT_TRUE(waitFor([&] { return job.done() || !clock.pending().empty(); }));
        clock.advance(200s);
        const Reply reply = job.awaitReply();
        EXPECT_TRUE(reply == startedReply() || reply == incompleteReply());
        EXPECT_EQ(clock.pending(), Delays());
    }
    EXPECT_FALSE(hasChildren());
}

}  // namespace
}  // namespace veltrix::test
