// A thousand actions beside a thousand setup requests, half of them failing in every way there is:
// afterwards everything is as it was.
#include "endurance/EnduranceFixture.h"
#include "endurance/Usage.h"
#include "support/Processes.h"
#include "support/WaitFor.h"

#include <array>
#include <thread>

namespace veltrix::test {
namespace {

constexpr int kActions = 1'000;
constexpr int kRequestsASession = 10;
constexpr int kSessions = 100;

// What the dispatcher may keep for the next time, and what an allocator may not have given back.
constexpr std::size_t kSpareThreads = 4;
constexpr std::size_t kSpareMemory = std::size_t{24} << 20;

class Leftovers : public Endurance {
  protected:
    // Returns how many were answered.
    int runActions(int count) {
        const std::array<ActionJob, 4> jobs{
            jobFor("good.mjs", "print {\"ok\":true}"),
            jobFor("bad.mjs", "fill 100000\nexit 1"),
            jobFor("good-too.mjs", "drop-input\nprint {\"ok\":true}\ndie"),
            ActionJob{"/no/such/node", {"script"}, {}},
        };
        int answered = 0;
        for (int index = 0; index < count; ++index) {
            answered +=
                run(jobs[static_cast<std::size_t>(index) % jobs.size()]) != incompleteReply() ? 1
                                                                                              : 0;
        }
        return answered;
    }

    int runSessions(int count) {
        int answered = 0;
        for (int index = 0; index < count; ++index) {
            const bool launches = index % 4 != 3;
            firstRun(index % 4 == 1 ? "read-bytes 1\ndie" : "answer-all {\"code\":\"a\"}\\n");
            const auto replies = useAndClose(
                makeChannel(launches ? resources.node() : "/no/such/node"), kRequestsASession);
            for (const Reply& reply : replies) {
                answered += reply != setupFailureReply() ? 1 : 0;
            }
        }
        return answered;
    }

    // Both at the same time.
    void runBoth(int actions, int sessions) {
        int answeredActions = 0;
        std::thread worker([&] { answeredActions = runActions(actions); });
        const int answeredRequests = runSessions(sessions);
        worker.join();
        EXPECT_EQ(answeredActions, actions / 2);
        EXPECT_EQ(answeredRequests, sessions * kRequestsASession / 2);
    }
};

TEST_F(Leftovers, AreNoneAfterAThousandActionsAndAThousandRequests) {
    constexpr int kWarmUp = 8;
    runBoth(kWarmUp, kWarmUp);
    const Usage before = usage();
    runBoth(rounds(kActions) / 4 * 4, rounds(kSessions) / 4 * 4);

    EXPECT_TRUE(waitFor([] { return !hasChildren(); })) << "a zombie, or worse";
    EXPECT_TRUE(waitFor([&] { return usage().threads <= before.threads + kSpareThreads; }));
    const Usage after = usage();
    EXPECT_EQ(after.descriptors, before.descriptors);
    EXPECT_LE(after.memory, before.memory + kSpareMemory);
}

}  // namespace
}  // namespace veltrix::test
