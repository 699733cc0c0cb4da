// The instruments have to be right before anything they measure: the two clocks of the tests.
#include "support/ManualClock.h"
#include "support/VirtualDispatcher.h"
#include "support/WaitFor.h"

#include <gtest/gtest.h>

#include <atomic>

namespace veltrix::test {
namespace {

using namespace std::chrono_literals;
using Delays = std::vector<std::chrono::milliseconds>;

TEST(ManualClock, HoldsDelayedWorkBackUntilItsTime) {
    ManualClock clock;
    std::atomic<int> ran = 0;
    const auto handle = clock.afterOnGlobal(200s, [&ran] { ++ran; });
    clock.asyncOnMainAfter(1s, [&ran] { ran += 10; });
    EXPECT_EQ(clock.pending(), (Delays{1s, 200s}));
    clock.advance(1s);
    ASSERT_TRUE(waitFor([&] { return ran == 10; }));
    clock.advance(198999ms);
    EXPECT_EQ(clock.pending(), Delays{1ms});
    clock.advance(1ms);
    EXPECT_TRUE(waitFor([&] { return ran == 11; }));
    EXPECT_EQ(clock.pending(), Delays());
}

TEST(ManualClock, ForgetsWhatIsCancelled) {
    ManualClock clock;
    auto captured = std::make_shared<int>();
    const std::weak_ptr<int> witness = captured;
    const auto handle = clock.afterOnGlobal(5s, [captured = std::move(captured)] { FAIL(); });
    handle->cancel();
    EXPECT_TRUE(witness.expired());
    EXPECT_EQ(clock.pending(), Delays());
    clock.advance(10s);
    handle->cancel();
}

TEST(VirtualDispatcher, RunsNothingByItself) {
    VirtualDispatcher dispatcher;
    std::vector<std::string> order;
    dispatcher.asyncOnMain([&] { order.push_back("main"); });
    dispatcher.asyncOnGlobal(QualityOfService::userInitiated, [&] {
        order.push_back("global");
        dispatcher.asyncOnMain([&] { order.push_back("back on main"); });
    });
    const auto queue = dispatcher.makeSerialQueue("veltrix.test");
    queue->async([&] { order.push_back("serial"); });
    EXPECT_TRUE(order.empty());
    dispatcher.runWorkers();
    EXPECT_EQ(order, (std::vector<std::string>{"global", "serial"}));
    dispatcher.runMain();
    EXPECT_EQ(order, (std::vector<std::string>{"global", "serial", "main", "back on main"}));
    EXPECT_EQ(dispatcher.qualities(),
              std::vector<QualityOfService>{QualityOfService::userInitiated});
}

TEST(VirtualDispatcher, DoesNotServeItsMainQueueInsideItsOwnWork) {
    VirtualDispatcher dispatcher;
    bool innerRan = false;
    dispatcher.asyncOnMain([&] {
        dispatcher.asyncOnMain([&] { innerRan = true; });
        dispatcher.runMain();
        EXPECT_FALSE(innerRan);
    });
    dispatcher.runMain();
    EXPECT_TRUE(innerRan);
}

TEST(VirtualDispatcher, HoldsDelayedWorkBackUntilItsTime) {
    VirtualDispatcher dispatcher;
    int ran = 0;
    const auto late = dispatcher.afterOnGlobal(20s, [&ran] { ran += 100; });
    const auto early = dispatcher.afterOnGlobal(5s, [&ran] { ran += 10; });
    dispatcher.asyncOnMainAfter(1s, [&ran] { ran += 1; });
    EXPECT_EQ(dispatcher.pending(), (Delays{1s, 5s, 20s}));
    dispatcher.advance(4999ms);
    dispatcher.settle();
    EXPECT_EQ(ran, 1);
    dispatcher.advance(1ms);
    EXPECT_EQ(dispatcher.onWorkers(), 1u);
    dispatcher.settle();
    EXPECT_EQ(ran, 11);
    late->cancel();
    early->cancel();
    EXPECT_EQ(dispatcher.pending(), Delays());
}

}  // namespace
}  // namespace veltrix::test
