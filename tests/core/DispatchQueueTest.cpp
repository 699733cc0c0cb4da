// What every dispatcher promises about its queues (common/Dispatch.h); delayed work has a file of
// its own. Knows no backend, so that it holds every one of them to the same contract.
#include "common/Dispatch.h"

#include "support/WaitFor.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <condition_variable>
#include <mutex>
#include <numeric>
#include <thread>
#include <vector>

#include <csignal>
#include <pthread.h>

namespace veltrix::test {
namespace {

std::vector<int> upTo(int count) {
    std::vector<int> numbers(static_cast<std::size_t>(count));
    std::iota(numbers.begin(), numbers.end(), 0);
    return numbers;
}

// Opens once `count` threads stand before it, for as long as the test is willing to wait.
class Gathering {
  public:
    explicit Gathering(int count) : missing_(count) {}
    bool arriveAndWait() {
        std::unique_lock lock(mutex_);
        --missing_;
        complete_.notify_all();
        return complete_.wait_for(lock, patience(), [this] { return missing_ <= 0; });
    }

  private:
    std::mutex mutex_;
    std::condition_variable complete_;
    int missing_;
};

TEST(MainQueue, RunsLaterOnTheMainThread) {
    std::thread::id thread;
    bool ran = false;
    systemDispatcher().asyncOnMain([&] {
        thread = std::this_thread::get_id();
        ran = true;
    });
    EXPECT_FALSE(ran) << "never inside the call";
    ASSERT_TRUE(waitFor([&] { return ran; }));
    EXPECT_EQ(thread, std::this_thread::get_id());
}

TEST(MainQueue, KeepsTheOrderOfSubmission) {
    std::vector<int> order;
    for (int i = 0; i < 1000; ++i) {
        systemDispatcher().asyncOnMain([&order, i] { order.push_back(i); });
    }
    ASSERT_TRUE(waitFor([&] { return order.size() == 1000; }));
    EXPECT_EQ(order, upTo(1000));
}

TEST(MainQueue, PutsWhatItsOwnWorkSubmitsBehindEverythingElse) {
    std::vector<std::string> order;
    systemDispatcher().asyncOnMain([&] {
        systemDispatcher().asyncOnMain([&] { order.push_back("inner"); });
        order.push_back("first");
    });
    systemDispatcher().asyncOnMain([&] { order.push_back("second"); });
    ASSERT_TRUE(waitFor([&] { return order.size() == 3; }));
    EXPECT_EQ(order, (std::vector<std::string>{"first", "second", "inner"}));
}

TEST(MainQueue, IsNotServedInsideItsOwnWork) {
    bool innerRan = false;
    bool innerRanInside = false;
    bool outerDone = false;
    systemDispatcher().asyncOnMain([&] {
        systemDispatcher().asyncOnMain([&] { innerRan = true; });
        for (int i = 0; i < 100; ++i) {
            serveMainQueue();
        }
        innerRanInside = innerRan;
        outerDone = true;
    });
    ASSERT_TRUE(waitFor([&] { return outerDone && innerRan; }));
    EXPECT_FALSE(innerRanInside);
}

TEST(MainQueue, TakesWorkFromManyThreadsAndKeepsTheOrderOfEach) {
    constexpr int kThreads = 8;
    constexpr int kEach = 500;
    std::array<std::vector<int>, kThreads> order;
    std::vector<std::thread> threads;
    for (std::size_t thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&order, thread] {
            for (int i = 0; i < kEach; ++i) {
                systemDispatcher().asyncOnMain([&order, thread, i] { order[thread].push_back(i); });
            }
        });
    }
    EXPECT_TRUE(waitFor([&] {
        return std::all_of(order.begin(), order.end(),
                           [](const auto& one) { return one.size() == kEach; });
    }));
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (const std::vector<int>& one : order) {
        EXPECT_EQ(one, upTo(kEach));
    }
}

TEST(MainQueue, ReleasesWhatWorkCapturedOnTheMainThread) {
    struct Witness {
        explicit Witness(std::thread::id& place) : thread(place) {}
        ~Witness() { thread = std::this_thread::get_id(); }
        std::thread::id& thread;
    };
    std::thread::id released;
    systemDispatcher().asyncOnGlobal(QualityOfService::byDefault, [&released] {
        auto witness = std::make_shared<Witness>(released);
        systemDispatcher().asyncOnMain([witness = std::move(witness)] {});
    });
    ASSERT_TRUE(waitFor([&] { return released != std::thread::id(); }));
    EXPECT_EQ(released, std::this_thread::get_id());
}

TEST(GlobalQueue, RunsOnAnotherThreadWhateverTheQuality) {
    for (const QualityOfService quality :
         {QualityOfService::byDefault, QualityOfService::userInitiated}) {
        std::atomic<bool> ran = false;
        std::thread::id thread;
        systemDispatcher().asyncOnGlobal(quality, [&] {
            thread = std::this_thread::get_id();
            ran = true;
        });
        ASSERT_TRUE(waitFor([&] { return ran.load(); }));
        EXPECT_NE(thread, std::this_thread::get_id());
    }
}

TEST(GlobalQueue, RunsMuchAtOnce) {
    constexpr int kAtOnce = 24;
    auto gathering = std::make_shared<Gathering>(kAtOnce);
    std::atomic<int> together = 0;
    std::atomic<int> done = 0;
    for (int i = 0; i < kAtOnce; ++i) {
        systemDispatcher().asyncOnGlobal(QualityOfService::byDefault,
                                         [&together, &done, gathering] {
                                             together += gathering->arriveAndWait() ? 1 : 0;
                                             ++done;
                                         });
    }
    ASSERT_TRUE(waitFor([&] { return done == kAtOnce; }));
    EXPECT_EQ(together, kAtOnce);
}

TEST(GlobalQueue, TakesWorkFromManyThreads) {
    constexpr int kThreads = 8;
    constexpr int kEach = 500;
    std::atomic<int> ran = 0;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&ran] {
            for (int i = 0; i < kEach; ++i) {
                systemDispatcher().asyncOnGlobal(QualityOfService::byDefault, [&ran] { ++ran; });
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_TRUE(waitFor([&] { return ran == kThreads * kEach; }));
}

// Two requests to end in a row were handled on two threads at once, which waited for each other.
TEST(GlobalQueue, LeavesSignalsToTheMainThread) {
    std::atomic<int> takesTermination = -1;
    systemDispatcher().asyncOnGlobal(QualityOfService::byDefault, [&] {
        sigset_t blocked;
        pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
        takesTermination = sigismember(&blocked, SIGTERM) == 0 ? 1 : 0;
    });
    ASSERT_TRUE(waitFor([&] { return takesTermination >= 0; }));
    EXPECT_EQ(takesTermination, 0);
    sigset_t blocked;
    pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
    EXPECT_EQ(sigismember(&blocked, SIGTERM), 0) << "nobody is left to take it";
}

TEST(GlobalQueue, ReleasesWhatWorkCaptured) {
    auto captured = std::make_shared<int>();
    const std::weak_ptr<int> witness = captured;
    systemDispatcher().asyncOnGlobal(QualityOfService::byDefault,
                                     [captured = std::move(captured)] {});
    EXPECT_TRUE(waitFor([&] { return witness.expired(); }));
}

TEST(SerialQueueContract, KeepsItsLabel) {
    EXPECT_EQ(systemDispatcher().makeSerialQueue("veltrix.test")->label(), "veltrix.test");
    EXPECT_EQ(systemDispatcher().makeSerialQueue("")->label(), "");
}

TEST(SerialQueueContract, RunsOneAtATimeInOrderOffTheMainThread) {
    const auto queue = systemDispatcher().makeSerialQueue("veltrix.test");
    const std::thread::id mainThread = std::this_thread::get_id();
    std::vector<int> order;
    std::atomic<int> inside = 0;
    std::atomic<int> violations = 0;
    std::atomic<int> done = 0;
    for (int i = 0; i < 1000; ++i) {
        queue->async([&, i] {
            violations += ++inside == 1 ? 0 : 1;
            violations += std::this_thread::get_id() == mainThread ? 1 : 0;
            order.push_back(i);
            --inside;
            ++done;
        });
    }
    ASSERT_TRUE(waitFor([&] { return done == 1000; }));
    EXPECT_EQ(order, upTo(1000));
    EXPECT_EQ(violations, 0);
}

TEST(SerialQueueContract, LetsLaterWorkSeeWhatEarlierWorkDid) {
    // Plain variables, touched by whatever threads serve the queue: it is all the synchronisation
    // that they need, also across times at which the queue stood empty.
    const auto queue = systemDispatcher().makeSerialQueue("veltrix.test");
    int value = 0;
    for (int i = 0; i < 200; ++i) {
        std::atomic<bool> done = false;
        queue->async([&] {
            ++value;
            done = true;
        });
        ASSERT_TRUE(waitFor([&] { return done.load(); }));
    }
    EXPECT_EQ(value, 200);
}

TEST(SerialQueueContract, IsIndependentOfEveryOtherQueue) {
    const auto blocked = systemDispatcher().makeSerialQueue("veltrix.test.blocked");
    const auto free = systemDispatcher().makeSerialQueue("veltrix.test.free");
    auto gathering = std::make_shared<Gathering>(2);
    std::atomic<int> together = 0;
    const auto meet = [&together, gathering] { together += gathering->arriveAndWait() ? 1 : 0; };
    blocked->async(meet);
    free->async(meet);
    EXPECT_TRUE(waitFor([&] { return together == 2; }));
}

TEST(SerialQueueContract, PutsWhatItsOwnWorkSubmitsAtItsEnd) {
    const auto queue = systemDispatcher().makeSerialQueue("veltrix.test");
    std::vector<std::string> order;
    std::atomic<bool> done = false;
    Gathering submitted(2);
    queue->async([&] {
        submitted.arriveAndWait();
        queue->async([&] {
            order.push_back("inner");
            done = true;
        });
        order.push_back("first");
    });
    queue->async([&] { order.push_back("second"); });
    submitted.arriveAndWait();
    ASSERT_TRUE(waitFor([&] { return done.load(); }));
    EXPECT_EQ(order, (std::vector<std::string>{"first", "second", "inner"}));
}

TEST(SerialQueueContract, RunsWhatWasSubmittedAlsoWhenItsHandleIsDropped) {
    constexpr int kRounds = 200;
    std::atomic<int> ran = 0;
    for (int i = 0; i < kRounds; ++i) {
        const auto queue = systemDispatcher().makeSerialQueue("veltrix.test");
        for (int j = 0; j < 3; ++j) {
            queue->async([&ran] { ++ran; });
        }
    }
    EXPECT_TRUE(waitFor([&] { return ran == kRounds * 3; }));
}

TEST(SerialQueueContract, MayBeDroppedByItsOwnWork) {
    std::atomic<int> ran = 0;
    auto queue = systemDispatcher().makeSerialQueue("veltrix.test");
    SerialQueue& handle = *queue;
    Gathering submitted(2);
    handle.async([&, queue = std::move(queue)]() mutable {
        submitted.arriveAndWait();
        queue.reset();
        ++ran;
    });
    handle.async([&ran] { ++ran; });
    submitted.arriveAndWait();
    EXPECT_TRUE(waitFor([&] { return ran == 2; }));
}

TEST(SerialQueueContract, TakesWorkFromManyThreadsAndKeepsTheOrderOfEach) {
    constexpr int kThreads = 8;
    constexpr int kEach = 500;
    const auto queue = systemDispatcher().makeSerialQueue("veltrix.test");
    std::array<std::vector<int>, kThreads> order;
    std::atomic<int> done = 0;
    std::vector<std::thread> threads;
    for (std::size_t thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&, thread] {
            for (int i = 0; i < kEach; ++i) {
                queue->async([&, thread, i] {
                    order[thread].push_back(i);
                    ++done;
                });
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    ASSERT_TRUE(waitFor([&] { return done == kThreads * kEach; }));
    for (const std::vector<int>& one : order) {
        EXPECT_EQ(one, upTo(kEach));
    }
}

TEST(SerialQueueContract, ReleasesWhatWorkCapturedBeforeTheNextWorkRuns) {
    const auto queue = systemDispatcher().makeSerialQueue("veltrix.test");
    auto captured = std::make_shared<int>();
    const std::weak_ptr<int> witness = captured;
    std::atomic<bool> done = false;
    bool released = false;
    queue->async([captured = std::move(captured)] {});
    queue->async([&] {
        released = witness.expired();
        done = true;
    });
    ASSERT_TRUE(waitFor([&] { return done.load(); }));
    EXPECT_TRUE(released);
}

}  // namespace
}  // namespace veltrix::test
