// The limit against the exit against the reply, as often as it takes for each to be first.
#include "endurance/EnduranceFixture.h"

#include <array>

namespace veltrix::test {
namespace {

using namespace std::chrono_literals;

constexpr std::array<std::chrono::milliseconds, 5> kLimits{0ms, 1ms, 2ms, 3ms, 5ms};

class LimitRace : public Endurance {
  protected:
    static constexpr int kRounds = 1'500;

    void startRound(int round) {
        dispatcher.setLimit(kLimits[static_cast<std::size_t>(round) % kLimits.size()]);
    }
};

TEST_F(LimitRace, OfAnActionEndsInItsReplyOrInTheOneOfEveryFailure) {
    const Reply started{{"ok", Json(true)}};
    const ActionJob job = jobFor("service.mjs", "print {\"ok\":true}");
    for (int round = 0; round < rounds(kRounds); ++round) {
        startRound(round);
        const Reply reply = run(job);
        ASSERT_TRUE(reply == started || reply == incompleteReply()) << round;
    }
}

TEST_F(LimitRace, OfARequestEndsInItsReplyOrInTheFailureReply) {
    const Reply answered{{"code", Json("a")}};
    firstRun("answer {\"code\":\"a\"}\\n\nanswer {\"code\":\"a\"}\\n\n");
    for (int round = 0; round < rounds(kRounds / 2); ++round) {
        startRound(round);
        for (const Reply& reply : useAndClose(makeChannel(resources.node()), 3)) {
            ASSERT_TRUE(reply == answered || reply == setupFailureReply()) << round;
        }
    }
}

// A process that hears no end of input leaves when the limit of closing asks it to.
TEST_F(LimitRace, OfAClosingAlwaysEnds) {
    firstRun("answer {\"code\":\"a\"}\\n\nhang");
    for (int round = 0; round < rounds(kRounds / 2); ++round) {
        startRound(round);
        static_cast<void>(useAndClose(makeChannel(resources.node()), 1));
    }
}

}  // namespace
}  // namespace veltrix::test
