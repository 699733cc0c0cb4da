// What a request puts on the wire, and what becomes of it when that fails.
#include "SetupIPCFixture.h"
#include "support/WaitFor.h"

#include <sys/wait.h>

#include <chrono>
#include <string>
#include <thread>

namespace veltrix::test {
namespace {

using std::chrono::seconds;

// More than any pipe holds.
std::string muchText() {
    return std::string(1'000'000, 'm');
}

class SetupIPCRequests : public SetupIPCTest {};

TEST_F(SetupIPCRequests, AreOneCompactLineWithActionAndValues) {
    firstRun(kEchoEveryRequest);
    static_cast<void>(ask("enrollment.poll"));
    static_cast<void>(ask(
        "x",
        {{"text", Json("two\nlines\r \"\\ \u00E9")}, {"yes", Json(true)}, {"no", Json(false)}}));
    ASSERT_EQ(received().size(), 2U);
    EXPECT_EQ(received()[0], R"({"action":"enrollment.poll","values":{}})");
    EXPECT_EQ(parseJsonObject(received()[1]),
              (Json::Object{{"action", Json("x")},
                            {"values", Json(Json::Object{{"text", Json("two\nlines\r \"\\ \u00E9")},
                                                         {"yes", Json(true)},
                                                         {"no", Json(false)}})}}));
}

TEST_F(SetupIPCRequests, MayHaveAnyAction) {
    firstRun(kEchoEveryRequest);
    for (const char* action : {"", "no.such.action", "a\nb", "\u20AC"}) {
        EXPECT_EQ(ask(action).at("action"), Json(action));
    }
}

TEST_F(SetupIPCRequests, HaveNoLargestSize) {
    firstRun("answer {\"read\":true}\\n\n");
    EXPECT_EQ(ask("tls.configure", {{"origin", Json(muchText())}}), (Reply{{"read", Json(true)}}));
    ASSERT_EQ(received().size(), 1U);
    EXPECT_GT(received()[0].size(), muchText().size());
}

TEST_F(SetupIPCRequests, ThatCannotBeEncodedLeaveTheProcessUntouched) {
    firstRun(kEchoEveryRequest);
    static_cast<void>(ask("enrollment.poll"));
    const pid_t pid = report().pid;

    const std::string noText = "\xFF\xFE";
    EXPECT_EQ(ask("tls.configure", {{"keyFile", Json(noText)}}), setupFailureReply());
    EXPECT_EQ(ask("tls.configure", {{noText, Json("x")}}), setupFailureReply());
    EXPECT_EQ(ask(noText), setupFailureReply());
    EXPECT_EQ(ask("x", {{"deep", Json(Json::Array{Json(noText)})}}), setupFailureReply());

    EXPECT_EQ(ask("enrollment.renew").at("action"), Json("enrollment.renew"));
    EXPECT_EQ(report().pid, pid);
    EXPECT_EQ(received().size(), 2U);
    EXPECT_EQ(clock.pending(), std::vector<std::chrono::milliseconds>());
}

TEST_F(SetupIPCRequests, ThatCannotBeEncodedStartAProcessAllTheSame) {
    firstRun(kEchoEveryRequest);
    EXPECT_EQ(ask("tls.configure", {{"keyFile", Json("\xC3")}}), setupFailureReply());
    const pid_t pid = report().pid;
    EXPECT_EQ(dispatcher.armed(), std::vector<std::chrono::milliseconds>{seconds(20)});
    static_cast<void>(ask("enrollment.poll"));
    EXPECT_EQ(report().pid, pid);
}

TEST_F(SetupIPCRequests, FailWhenTheProcessDiesOverThem) {
    firstRun("read-bytes 70000\ndie\n");
    EXPECT_EQ(ask("tls.configure", {{"origin", Json(muchText())}}), setupFailureReply());
    ASSERT_TRUE(awaitExit(report().pid));
    firstRun(kEchoEveryRequest);
    EXPECT_EQ(ask("enrollment.poll").at("action"), Json("enrollment.poll"));
}

TEST_F(SetupIPCRequests, FailWhenTheProcessHasClosedItsInputAndLivesOn) {
    const std::string closed = resources.scratch("closed");
    firstRun("answer {\"code\":\"a\"}\\n\nclose-input\ntouch " + closed + "\nhang\n");
    EXPECT_EQ(ask("enrollment.poll"), (Reply{{"code", Json("a")}}));
    ASSERT_TRUE(awaitFile(closed));
    const pid_t pid = report().pid;
    EXPECT_EQ(ask("enrollment.poll"), setupFailureReply());
    EXPECT_EQ(ask("enrollment.poll"), setupFailureReply());
    EXPECT_EQ(report().pid, pid) << "it still runs, so it is still used";
    EXPECT_EQ(clock.pending(), std::vector<std::chrono::milliseconds>());

    kill(pid);
    firstRun(kEchoEveryRequest);
    EXPECT_EQ(ask("enrollment.poll").at("action"), Json("enrollment.poll"));
}

TEST_F(SetupIPCRequests, AreAnsweredInOrderEachWithItsOwnLine) {
    firstRun(kEchoEveryRequest);
    for (int number = 0; number < 50; ++number) {
        request("a" + std::to_string(number));
    }
    ASSERT_TRUE(awaitArrivals(50));
    for (std::size_t number = 0; number < 50; ++number) {
        EXPECT_EQ(arrivals()[number].reply.at("action"), Json("a" + std::to_string(number)));
    }
}

TEST_F(SetupIPCRequests, WaitForTheReplyToTheOneBefore) {
    const std::string go = resources.scratch("go");
    firstRun("answer\nawait " + go + "\nprint {\"first\":true}\\n\necho-all\n");
    request("first");
    request("second");
    ASSERT_TRUE(awaitReceived(1));
    EXPECT_EQ(received().size(), 1U);
    EXPECT_TRUE(arrivals().empty());
    touch(go);
    ASSERT_TRUE(awaitArrivals(2));
    EXPECT_EQ(arrivals()[0].reply, (Reply{{"first", Json(true)}}));
    EXPECT_EQ(arrivals()[1].reply.at("action"), Json("second"));
}

TEST_F(SetupIPCRequests, AreAnsweredOnlyWhenTheMainThreadGetsThere) {
    firstRun(kEchoEveryRequest);
    request("enrollment.poll");
    // Not waitFor, which would serve the main queue.
    const auto deadline = std::chrono::steady_clock::now() + patience();
    while (received().empty() && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::yield();
    }
    EXPECT_EQ(received().size(), 1U);
    EXPECT_EQ(arrivals().size(), 0U);
    EXPECT_TRUE(awaitArrivals(1));
}

// A component of this process that waits for children of its own must find them.
TEST_F(SetupIPCRequests, ReapNoChildThatTheChannelDidNotStart) {
    const pid_t stranger = ::fork();
    if (stranger == 0) {
        ::_exit(7);
    }
    ASSERT_TRUE(awaitExit(stranger));
    firstRun(kEchoEveryRequest);
    static_cast<void>(ask("enrollment.poll"));
    kill(report().pid);
    static_cast<void>(ask("enrollment.poll"));
    closeAndWait();
    int status = 0;
    ASSERT_EQ(::waitpid(stranger, &status, 0), stranger);
    EXPECT_EQ(WEXITSTATUS(status), 7);
}

}  // namespace
}  // namespace veltrix::test
