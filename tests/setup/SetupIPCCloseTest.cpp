// Closing the channel, and letting go of it.
#include "SetupIPCFixture.h"
#include "common/Files.h"
#include "support/Processes.h"
#include "support/WaitFor.h"

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <utility>

namespace veltrix::test {
namespace {

using std::chrono::hours;
using std::chrono::milliseconds;
using std::chrono::seconds;
using Limits = std::vector<milliseconds>;

class SetupIPCClosing : public SetupIPCTest {};

TEST_F(SetupIPCClosing, WaitsForNothingWhenNothingRuns) {
    firstRun(kEchoEveryRequest);
    close();
    close();
    ASSERT_TRUE(awaitArrivals(2));
    EXPECT_EQ(dispatcher.armed(), Limits());
}

TEST_F(SetupIPCClosing, IsDoneWhenTheProcessHasExitedAndNotBefore) {
    const std::string ended = resources.scratch("ended");
    const std::string go = resources.scratch("go");
    firstRun("echo-all\ntouch " + ended + "\nawait " + go + "\n");
    static_cast<void>(ask("enrollment.poll"));
    close();
    ASSERT_TRUE(awaitFile(ended));
    ASSERT_TRUE(clock.waitForPending(1));
    EXPECT_EQ(arrivals().size(), 1U);
    touch(go);
    ASSERT_TRUE(awaitArrivals(2));
    EXPECT_FALSE(hasChildren());
    EXPECT_EQ(clock.pending(), Limits());
    EXPECT_EQ(openDescriptors(), descriptorsBefore);
}

TEST_F(SetupIPCClosing, WaitsForAProcessThatHasExitedAlready) {
    firstRun("answer {}\\n\n");
    static_cast<void>(ask("enrollment.poll"));
    ASSERT_TRUE(awaitExit(report().pid));
    closeAndWait();
    EXPECT_FALSE(hasChildren());
    EXPECT_EQ(dispatcher.armed(), (Limits{seconds(20), seconds(5)}));
}

TEST_F(SetupIPCClosing, LetsThePendingRequestFinishFirst) {
    const std::string go = resources.scratch("go");
    firstRun("answer\nawait " + go + "\nprint {\"late\":true}\\n\necho-all\n");
    request("enrollment.poll");
    ASSERT_TRUE(awaitReceived(1));
    close();
    EXPECT_EQ(clock.pending(), Limits{seconds(20)}) << "nothing but the request's own limit";
    touch(go);
    ASSERT_TRUE(awaitArrivals(2));
    EXPECT_EQ(arrivals()[0].reply, (Reply{{"late", Json(true)}}));
    EXPECT_FALSE(arrivals()[1].isReply);
    EXPECT_FALSE(hasChildren());
}

TEST_F(SetupIPCClosing, MayBeAskedForTwice) {
    firstRun(kEchoEveryRequest);
    static_cast<void>(ask("enrollment.poll"));
    close();
    close();
    ASSERT_TRUE(awaitArrivals(3));
    EXPECT_EQ(dispatcher.armed(), (Limits{seconds(20), seconds(5)})) << "the second found nothing";
}

TEST_F(SetupIPCClosing, KeepsItsPlaceAmongRequests) {
    firstRun(kEchoEveryRequest);
    const std::string order = "rrcrcccrrcr";
    for (const char step : order) {
        step == 'r' ? request("enrollment.poll") : close();
    }
    ASSERT_TRUE(awaitArrivals(order.size()));
    std::string seen;
    for (const Arrival& arrival : arrivals()) {
        seen.push_back(arrival.isReply ? 'r' : 'c');
        if (arrival.isReply) {
            EXPECT_EQ(arrival.reply.at("action"), Json("enrollment.poll"));
        }
    }
    EXPECT_EQ(seen, order);
}

TEST_F(SetupIPCClosing, LeavesTheWordsOfTheOldProcessBehind) {
    firstRun("answer {\"run\":1}\\n{\"stale\":true}\\n\necho-all\n");
    static_cast<void>(ask("enrollment.poll"));
    closeAndWait();
    firstRun("answer-all {\"run\":2}\\n\n");
    EXPECT_EQ(ask("enrollment.poll"), (Reply{{"run", Json(2.0)}}));
}

// Tells on which thread it came to its end.
class Witness {
  public:
    explicit Witness(std::atomic<std::thread::id>& diedOn) : diedOn_(diedOn) {}
    Witness(const Witness&) = delete;
    Witness& operator=(const Witness&) = delete;
    ~Witness() { diedOn_ = std::this_thread::get_id(); }

  private:
    std::atomic<std::thread::id>& diedOn_;
};

class SetupIPCLifetime : public SetupIPCTest {};

TEST_F(SetupIPCLifetime, LastsUntilThePendingWorkIsDone) {
    const std::string go = resources.scratch("go");
    firstRun("answer\nawait " + go + "\nprint {\"late\":true}\\n\necho-all\n");
    request("enrollment.poll");
    request("enrollment.renew");
    close();
    ASSERT_TRUE(awaitReceived(1));
    const std::weak_ptr<SetupIPC> released = std::exchange(channel, nullptr);
    EXPECT_FALSE(released.expired());
    touch(go);
    ASSERT_TRUE(awaitArrivals(3));
    EXPECT_EQ(arrivals()[0].reply, (Reply{{"late", Json(true)}}));
    EXPECT_EQ(arrivals()[1].reply.at("action"), Json("enrollment.renew"));
    EXPECT_TRUE(waitFor([&released] { return released.expired(); }));
}

TEST_F(SetupIPCLifetime, MayEndOnTheQueueOfTheChannelItself) {
    firstRun(kEchoEveryRequest);
    std::atomic<std::thread::id> diedOn{};
    channel = SetupIPC::make(resources.node(), home,
                             {dispatcher,
                              [witness = std::make_shared<Witness>(diedOn),
                               folder = resources.folder()] { return folder; },
                              [this] { return environment; }});
    const std::string go = resources.scratch("go");
    firstRun("answer\nawait " + go + "\nprint {\"late\":true}\\n\necho-all\n");
    request("enrollment.poll");
    ASSERT_TRUE(awaitReceived(1));
    channel.reset();
    EXPECT_EQ(diedOn.load(), std::thread::id());
    touch(go);
    ASSERT_TRUE(awaitArrivals(1));
    ASSERT_TRUE(waitFor([&diedOn] { return diedOn.load() != std::thread::id(); }));
    EXPECT_NE(diedOn.load(), std::this_thread::get_id());
}

// A completion holds the window, and a window must not die on a worker thread.
TEST_F(SetupIPCLifetime, OfACompletionEndsOnTheMainThread) {
    firstRun(kEchoEveryRequest);
    dispatcher.workersWaitForMain = true;
    for (const bool closing : {false, true}) {
        std::atomic<std::thread::id> diedOn{};
        auto witness = std::make_shared<Witness>(diedOn);
        if (closing) {
            channel->close([witness] {});
        } else {
            channel->request("enrollment.poll", {}, [witness](const Reply&) {});
        }
        witness.reset();
        ASSERT_TRUE(waitFor([&diedOn] { return diedOn.load() != std::thread::id(); }));
        EXPECT_EQ(diedOn.load(), std::this_thread::get_id());
    }
}

TEST_F(SetupIPCLifetime, EndsWithoutWaitingForTheProcessOrEndingIt) {
    const std::string ended = resources.scratch("ended");
    const std::string go = resources.scratch("go");
    const std::string terminations = resources.scratch("terminations");
    firstRun("count-terminates " + terminations + "\necho-all\ntouch " + ended + "\nawait " + go +
             "\n");
    static_cast<void>(ask("enrollment.poll"));
    const pid_t pid = report().pid;
    channel.reset();
    ASSERT_TRUE(awaitFile(ended)) << "it sees the end of its input";
    clock.advance(hours(1));
    EXPECT_TRUE(processExists(pid));
    EXPECT_FALSE(fileExists(terminations));
    touch(go);
    EXPECT_TRUE(waitFor([] { return !hasChildren(); })) << "no zombie stays";
}

}  // namespace
}  // namespace veltrix::test
