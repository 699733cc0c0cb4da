// The dispatcher on Linux: standard-library threads. One worker and one timer thread exist from the
// start, so that running out of threads later can delay work but never lose it. More workers are
// started when there is work and nobody idle, a few are kept for the next time, and all of them
// sleep: at rest nothing here ever wakes up. None of them takes signals: a handler of the
// program's, such as the window system's for a request to end, expects the main thread, and two of
// them at once on two threads would wait for each other for ever.
#include "common/Dispatch.h"
#include "common/MainQueue_linux.h"
#include "common/UniqueFd.h"

#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <csignal>
#include <cstdint>
#include <deque>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include <pthread.h>
#include <sys/timerfd.h>
#include <unistd.h>

namespace veltrix {
namespace {

// Throws as std::thread does, when the system has no thread to give.
template <typename Run>
void startThread(Run run) {
    struct NoSignals {
        NoSignals() {
            sigset_t everything;
            sigfillset(&everything);
            pthread_sigmask(SIG_SETMASK, &everything, &before);
        }
        ~NoSignals() { pthread_sigmask(SIG_SETMASK, &before, nullptr); }
        NoSignals(const NoSignals&) = delete;
        NoSignals& operator=(const NoSignals&) = delete;
        sigset_t before{};
    };
    const NoSignals inherited;
    std::thread(std::move(run)).detach();
}

using Clock = std::chrono::steady_clock;  // which is CLOCK_MONOTONIC

class MainQueue {
  public:
    void submit(Work work) {
        void (*waker)() = nullptr;
        {
            const std::lock_guard lock(mutex_);
            waker = pending_.empty() ? waker_ : nullptr;
            pending_.push_back(std::move(work));
        }
        if (waker != nullptr) {
            waker();
        }
    }

    void drain() {
        if (draining_) {
            return;
        }
        draining_ = true;
        for (Work work = next(); work; work = next()) {
            work();
        }
        draining_ = false;
    }

    void setWaker(void (*waker)()) {
        const std::lock_guard lock(mutex_);
        waker_ = waker;
    }

  private:
    Work next() {
        const std::lock_guard lock(mutex_);
        if (pending_.empty()) {
            return {};
        }
        Work work = std::move(pending_.front());
        pending_.pop_front();
        return work;
    }

    std::mutex mutex_;
    std::deque<Work> pending_;
    void (*waker_)() = nullptr;
    bool draining_ = false;  // main thread only
};

class WorkerPool {
  public:
    WorkerPool() {
        startThread([this] { run(); });
    }

    void submit(Work work) {
        {
            const std::lock_guard lock(mutex_);
            pending_.push_back(std::move(work));
            if (idle_ < pending_.size()) {
                startWorker();
                return;
            }
        }
        wake_.notify_one();  // who wakes up wants the lock
    }

  private:
    // Enough for an action, its watchdog and the setup channel without starting a thread.
    static constexpr std::size_t kKeptIdle = 4;

    // When the system has no thread to give, the work waits for a worker to come free. There is
    // always one: the first was started with the pool.
    void startWorker() {
        try {
            startThread([this] { run(); });
        } catch (const std::system_error&) {
            return;
        }
    }

    void run() noexcept {
        std::unique_lock lock(mutex_);
        for (;;) {
            if (pending_.empty()) {
                if (idle_ == kKeptIdle) {
                    break;
                }
                ++idle_;
                wake_.wait(lock, [this] { return !pending_.empty(); });
                --idle_;
            }
            Work work = std::move(pending_.front());
            pending_.pop_front();
            lock.unlock();
            work();
            work = nullptr;  // what it captured goes before the lock is taken again
            lock.lock();
        }
    }

    std::mutex mutex_;
    std::condition_variable wake_;
    std::deque<Work> pending_;
    std::size_t idle_ = 0;
};

// All delayed work of the process, sorted by due time, and the one thread that waits for the
// earliest. What it waits for is a timer of the kernel's (timerfd_create(2)): setting that wakes
// nobody, where a thread that had to hear of every limit would stand in the way of the script which
// the limit is for, and again in that of its reply. Throws when there is none to be had, as a
// missing thread does.
class Timers {
  public:
    struct Entry {
        Clock::time_point due;
        Work work;  // empty once cancelled or handed on; guarded by mutex_
    };

    explicit Timers(WorkerPool& pool)
        : pool_(pool), timer_(::timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC)) {
        if (!timer_) {
            throw std::system_error(errno, std::generic_category(), "timerfd_create");
        }
        startThread([this] { run(); });
    }

    std::shared_ptr<Entry> add(std::chrono::milliseconds delay, Work work) {
        auto entry = std::make_shared<Entry>(Entry{Clock::now() + delay, std::move(work)});
        const std::lock_guard lock(mutex_);
        const auto later = std::upper_bound(
            entries_.begin(), entries_.end(), entry,
            [](const auto& left, const auto& right) { return left->due < right->due; });
        const bool isEarliest = later == entries_.begin();
        entries_.insert(later, entry);
        if (isEarliest) {
            setTimer();
        }
        return entry;
    }

    void cancel(const std::shared_ptr<Entry>& entry) {
        Work released;  // outlives the lock: what the work captured may want the lock itself
        const std::lock_guard lock(mutex_);
        released = std::exchange(entry->work, nullptr);
        const auto found = std::find(entries_.begin(), entries_.end(), entry);
        if (found != entries_.end()) {
            const bool wasEarliest = found == entries_.begin();
            entries_.erase(found);
            if (wasEarliest) {
                setTimer();
            }
        }
    }

  private:
    // To the earliest entry; with none it never goes off.
    void setTimer() {
        itimerspec setting{};
        if (!entries_.empty()) {
            using std::chrono::nanoseconds;
            using std::chrono::seconds;
            const nanoseconds due = entries_.front()->due.time_since_epoch();
            const auto whole = std::chrono::duration_cast<seconds>(due);
            setting.it_value.tv_sec = whole.count();
            setting.it_value.tv_nsec = (due - whole).count();
        }
        ::timerfd_settime(timer_.get(), TFD_TIMER_ABSTIME, &setting, nullptr);
    }

    void run() noexcept {
        for (;;) {
            std::uint64_t times = 0;
            static_cast<void>(::read(timer_.get(), &times, sizeof times));
            const std::lock_guard lock(mutex_);
            while (!entries_.empty() && entries_.front()->due <= Clock::now()) {
                pool_.submit(std::exchange(entries_.front()->work, nullptr));
                entries_.erase(entries_.begin());
            }
            setTimer();
        }
    }

    WorkerPool& pool_;
    const UniqueFd timer_;
    std::mutex mutex_;
    std::vector<std::shared_ptr<Entry>> entries_;
};

class TimedWork final : public DelayedWork {
  public:
    TimedWork(Timers& timers, std::shared_ptr<Timers::Entry> entry)
        : timers_(timers), entry_(std::move(entry)) {}
    void cancel() override { timers_.cancel(entry_); }

  private:
    Timers& timers_;
    std::shared_ptr<Timers::Entry> entry_;
};

// A queue has no thread of its own: its first pending work brings one worker, which stays until
// the queue is empty. The worker holds the state, so the handle may go at any time.
class PooledSerialQueue final : public SerialQueue {
  public:
    PooledSerialQueue(WorkerPool& pool, std::string label)
        : label_(std::move(label)), state_(std::make_shared<State>(pool)) {}

    void async(Work work) override {
        const std::lock_guard lock(state_->mutex);
        state_->pending.push_back(std::move(work));
        if (!state_->active) {
            state_->active = true;
            state_->pool.submit([state = state_] { run(*state); });
        }
    }

    [[nodiscard]] const std::string& label() const override { return label_; }

  private:
    struct State {
        explicit State(WorkerPool& workers) : pool(workers) {}
        WorkerPool& pool;
        std::mutex mutex;
        std::deque<Work> pending;
        bool active = false;
    };

    static void run(State& state) {
        std::unique_lock lock(state.mutex);
        while (!state.pending.empty()) {
            Work work = std::move(state.pending.front());
            state.pending.pop_front();
            lock.unlock();
            work();
            work = nullptr;
            lock.lock();
        }
        state.active = false;
    }

    std::string label_;
    std::shared_ptr<State> state_;
};

class ThreadDispatcher final : public Dispatcher {
  public:
    void asyncOnMain(Work work) override { main_.submit(std::move(work)); }

    void asyncOnMainAfter(std::chrono::milliseconds delay, Work work) override {
        timers_.add(delay,
                    [this, work = std::move(work)]() mutable { main_.submit(std::move(work)); });
    }

    void asyncOnGlobal(QualityOfService, Work work) override { pool_.submit(std::move(work)); }

    std::shared_ptr<DelayedWork> afterOnGlobal(std::chrono::milliseconds delay,
                                               Work work) override {
        return std::make_shared<TimedWork>(timers_, timers_.add(delay, std::move(work)));
    }

    std::shared_ptr<SerialQueue> makeSerialQueue(std::string label) override {
        return std::make_shared<PooledSerialQueue>(pool_, std::move(label));
    }

    MainQueue& mainQueue() { return main_; }

  private:
    MainQueue main_;
    WorkerPool pool_;
    Timers timers_{pool_};
};

// Never destroyed: its threads run until the process ends.
ThreadDispatcher& threadDispatcher() {
    static auto* const dispatcher = new ThreadDispatcher;
    return *dispatcher;
}

}  // namespace

Dispatcher& systemDispatcher() {
    return threadDispatcher();
}

void drainMainQueue() {
    threadDispatcher().mainQueue().drain();
}

void setMainQueueWaker(void (*waker)()) {
    threadDispatcher().mainQueue().setWaker(waker);
}

}  // namespace veltrix
