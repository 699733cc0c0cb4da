// What every dispatcher promises about delayed work (common/Dispatch.h). Times are only ever
// tested from below: nothing may run too early, and a busy machine may be as late as it likes.
#include "common/Dispatch.h"

#include "support/WaitFor.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <thread>
#include <vector>

namespace veltrix::test {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

TEST(DelayedWork, OnMainRunsThereAndNotBeforeItsTime) {
    const auto start = Clock::now();
    bool ran = false;
    std::thread::id thread;
    systemDispatcher().asyncOnMainAfter(20ms, [&] {
        ran = true;
        thread = std::this_thread::get_id();
    });
    ASSERT_TRUE(waitFor([&] { return ran; }));
    EXPECT_GE(Clock::now() - start, 20ms);
    EXPECT_EQ(thread, std::this_thread::get_id());
}

TEST(DelayedWork, RunsOnAWorkerAndNotBeforeItsTime) {
    const auto start = Clock::now();
    std::atomic<bool> ran = false;
    std::thread::id thread;
    const auto handle = systemDispatcher().afterOnGlobal(20ms, [&] {
        thread = std::this_thread::get_id();
        ran = true;
    });
    ASSERT_TRUE(waitFor([&] { return ran.load(); }));
    EXPECT_GE(Clock::now() - start, 20ms);
    EXPECT_NE(thread, std::this_thread::get_id());
}

TEST(DelayedWork, RunsOnceEachInWhateverOrderItIsScheduled) {
    constexpr int kCount = 60;
    const auto start = Clock::now();
    std::atomic<int> early = 0;
    std::atomic<int> ran = 0;
    for (int i = 0; i < kCount; ++i) {
        const auto delay = std::chrono::milliseconds((i * 37) % 41);
        static_cast<void>(systemDispatcher().afterOnGlobal(delay, [&, delay] {
            early += Clock::now() - start < delay ? 1 : 0;
            ++ran;
        }));
    }
    ASSERT_TRUE(waitFor([&] { return ran == kCount; }));
    EXPECT_EQ(early, 0);
}

TEST(DelayedWork, MayBeDueAtOnce) {
    std::atomic<int> ran = 0;
    static_cast<void>(systemDispatcher().afterOnGlobal(0ms, [&ran] { ++ran; }));
    systemDispatcher().asyncOnMainAfter(0ms, [&ran] { ++ran; });
    EXPECT_TRUE(waitFor([&] { return ran == 2; }));
}

TEST(DelayedWork, IsNotHeldUpByWorkThatIsDueEarlierAndBlocks) {
    std::atomic<bool> open = false;
    std::atomic<bool> blockedDone = false;
    std::atomic<bool> ran = false;
    static_cast<void>(systemDispatcher().afterOnGlobal(0ms, [&] {
        while (!open) {
            std::this_thread::yield();
        }
        blockedDone = true;
    }));
    static_cast<void>(systemDispatcher().afterOnGlobal(1ms, [&ran] { ran = true; }));
    EXPECT_TRUE(waitFor([&] { return ran.load(); }));
    open = true;
    EXPECT_TRUE(waitFor([&] { return blockedDone.load(); }));
}

TEST(DelayedWork, DoesNotRunOnceItIsCancelled) {
    std::atomic<bool> cancelledRan = false;
    std::atomic<bool> laterRan = false;
    const auto cancelled = systemDispatcher().afterOnGlobal(20ms, [&] { cancelledRan = true; });
    cancelled->cancel();
    static_cast<void>(systemDispatcher().afterOnGlobal(40ms, [&] { laterRan = true; }));
    ASSERT_TRUE(waitFor([&] { return laterRan.load(); }));
    EXPECT_FALSE(cancelledRan);
}

TEST(DelayedWork, IsCancelledAloneAmongOthers) {
    std::vector<std::shared_ptr<DelayedWork>> handles;
    std::atomic<int> kept = 0;
    std::atomic<int> dropped = 0;
    for (int i = 0; i < 40; ++i) {
        handles.push_back(
            systemDispatcher().afterOnGlobal(30ms, [&, i] { ++(i % 2 == 0 ? kept : dropped); }));
    }
    for (std::size_t i = 1; i < handles.size(); i += 2) {
        handles[i]->cancel();
    }
    ASSERT_TRUE(waitFor([&] { return kept == 20; }));
    EXPECT_EQ(dropped, 0);
}

TEST(DelayedWork, StillRunsWhenItsHandleIsDropped) {
    std::atomic<bool> ran = false;
    systemDispatcher().afterOnGlobal(5ms, [&ran] { ran = true; }).reset();
    EXPECT_TRUE(waitFor([&] { return ran.load(); }));
}

TEST(DelayedWork, ReleasesWhatItCapturedSoonAfterItIsCancelled) {
    auto captured = std::make_shared<int>();
    const std::weak_ptr<int> witness = captured;
    const auto handle =
        systemDispatcher().afterOnGlobal(200s, [captured = std::move(captured)] { FAIL(); });
    EXPECT_FALSE(witness.expired());
    handle->cancel();
    EXPECT_TRUE(waitFor([&] { return witness.expired(); }));
}

TEST(DelayedWork, ReleasesWhatItCapturedAfterItHasRun) {
    auto captured = std::make_shared<int>();
    const std::weak_ptr<int> witness = captured;
    const auto handle = systemDispatcher().afterOnGlobal(1ms, [captured = std::move(captured)] {});
    EXPECT_TRUE(waitFor([&] { return witness.expired(); }));
}

TEST(DelayedWork, MayScheduleAndCancelMoreWhileItIsReleased) {
    struct Rescheduler {
        explicit Rescheduler(std::atomic<bool>& flag) : done(flag) {}
        ~Rescheduler() {
            const auto more = systemDispatcher().afterOnGlobal(200s, [] {});
            more->cancel();
            done = true;
        }
        std::atomic<bool>& done;
    };
    std::atomic<bool> done = false;
    auto captured = std::make_shared<Rescheduler>(done);
    const auto handle = systemDispatcher().afterOnGlobal(200s, [captured = std::move(captured)] {});
    handle->cancel();
    EXPECT_TRUE(waitFor([&] { return done.load(); }));
}

TEST(DelayedWork, MayBeCancelledTwiceAndAfterItHasRun) {
    std::atomic<int> ran = 0;
    const auto handle = systemDispatcher().afterOnGlobal(1ms, [&ran] { ++ran; });
    ASSERT_TRUE(waitFor([&] { return ran == 1; }));
    handle->cancel();
    handle->cancel();
    const auto unused = systemDispatcher().afterOnGlobal(200s, [&ran] { ++ran; });
    unused->cancel();
    unused->cancel();
    EXPECT_EQ(ran, 1);
}

TEST(DelayedWork, MayCancelItself) {
    struct Shared {
        std::atomic<bool> scheduled = false;
        std::atomic<bool> ran = false;
        std::shared_ptr<DelayedWork> handle;
    };
    Shared shared;
    shared.handle = systemDispatcher().afterOnGlobal(0ms, [&shared] {
        while (!shared.scheduled) {
            std::this_thread::yield();
        }
        shared.handle->cancel();
        shared.ran = true;
    });
    shared.scheduled = true;
    EXPECT_TRUE(waitFor([&] { return shared.ran.load(); }));
}

TEST(DelayedWork, IsCancelledWithoutWaitingForItWhileItRuns) {
    std::atomic<bool> inside = false;
    std::atomic<bool> open = false;
    std::atomic<bool> done = false;
    const auto handle = systemDispatcher().afterOnGlobal(0ms, [&] {
        inside = true;
        while (!open) {
            std::this_thread::yield();
        }
        done = true;
    });
    ASSERT_TRUE(waitFor([&] { return inside.load(); }));
    handle->cancel();
    open = true;
    EXPECT_TRUE(waitFor([&] { return done.load(); }));
}

TEST(DelayedWork, MayBeCancelledInTheVeryMomentItFalls) {
    constexpr int kRounds = 1000;
    std::atomic<int> ran = 0;
    std::vector<std::weak_ptr<int>> witnesses;
    for (int i = 0; i < kRounds; ++i) {
        auto captured = std::make_shared<int>();
        witnesses.emplace_back(captured);
        const auto handle = systemDispatcher().afterOnGlobal(
            0ms, [&ran, captured = std::move(captured)] { ++ran; });
        handle->cancel();
    }
    EXPECT_TRUE(waitFor([&] {
        return std::all_of(witnesses.begin(), witnesses.end(),
                           [](const auto& witness) { return witness.expired(); });
    })) << "what the work captured is gone whether it ran or not";
    EXPECT_LE(ran, kRounds);
}

TEST(DelayedWork, MayBeScheduledAndCancelledByManyThreads) {
    constexpr int kThreads = 8;
    std::atomic<int> ran = 0;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&ran] {
            for (int i = 0; i < 200; ++i) {
                const auto cancelled = systemDispatcher().afterOnGlobal(200s, [] { FAIL(); });
                static_cast<void>(systemDispatcher().afterOnGlobal(1ms, [&ran] { ++ran; }));
                cancelled->cancel();
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_TRUE(waitFor([&] { return ran == kThreads * 200; }));
}

}  // namespace
}  // namespace veltrix::test
