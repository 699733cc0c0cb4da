#include "support/ManualClock.h"

#include "support/WaitFor.h"

#include <algorithm>
#include <functional>
#include <mutex>
#include <utility>

namespace veltrix::test {

// Outlives the clock for as long as a handle to delayed work does.
class ManualClock::Schedule : public std::enable_shared_from_this<Schedule> {
  public:
    using Time = std::chrono::milliseconds;
    using Submit = std::function<void(Work)>;

    std::shared_ptr<DelayedWork> add(Time delay, Work work, Submit submit) {
        auto entry = std::make_shared<Entry>(Entry{{}, std::move(work), std::move(submit)});
        const std::lock_guard lock(mutex_);
        entry->due = now_ + delay;
        const auto later =
            std::upper_bound(entries_.begin(), entries_.end(), entry->due,
                             [](Time due, const auto& other) { return due < other->due; });
        entries_.insert(later, entry);
        return std::make_shared<Handle>(shared_from_this(), entry);
    }

    void advance(Time time) {
        std::vector<std::shared_ptr<Entry>> due;
        {
            const std::lock_guard lock(mutex_);
            now_ += time;
            const auto first =
                std::find_if(entries_.begin(), entries_.end(),
                             [this](const auto& entry) { return entry->due > now_; });
            due.assign(entries_.begin(), first);
            entries_.erase(entries_.begin(), first);
        }
        for (const auto& entry : due) {
            entry->submit(std::move(entry->work));
        }
    }

    std::vector<Time> pending() const {
        const std::lock_guard lock(mutex_);
        std::vector<Time> delays;
        for (const auto& entry : entries_) {
            delays.push_back(entry->due - now_);
        }
        return delays;
    }

  private:
    struct Entry {
        Time due;
        Work work;
        Submit submit;
    };

    class Handle final : public DelayedWork {
      public:
        Handle(std::shared_ptr<Schedule> schedule, std::shared_ptr<Entry> entry)
            : schedule_(std::move(schedule)), entry_(std::move(entry)) {}
        void cancel() override { schedule_->remove(entry_); }

      private:
        std::shared_ptr<Schedule> schedule_;
        std::shared_ptr<Entry> entry_;
    };

    void remove(const std::shared_ptr<Entry>& entry) {
        Work released;  // outlives the lock, like anything that runs a test's code
        const std::lock_guard lock(mutex_);
        const auto found = std::find(entries_.begin(), entries_.end(), entry);
        if (found != entries_.end()) {
            released = std::move(entry->work);
            entries_.erase(found);
        }
    }

    mutable std::mutex mutex_;
    Time now_{0};
    std::vector<std::shared_ptr<Entry>> entries_;  // by due time
};

ManualClock::ManualClock() : schedule_(std::make_shared<Schedule>()) {}

ManualClock::~ManualClock() = default;

void ManualClock::advance(std::chrono::milliseconds time) {
    schedule_->advance(time);
}

std::vector<std::chrono::milliseconds> ManualClock::pending() const {
    return schedule_->pending();
}

bool ManualClock::waitForPending(std::size_t count) const {
    return waitFor([this, count] { return pending().size() == count; });
}

void ManualClock::asyncOnMain(Work work) {
    systemDispatcher().asyncOnMain(std::move(work));
}

void ManualClock::asyncOnMainAfter(std::chrono::milliseconds delay, Work work) {
    schedule_->add(delay, std::move(work),
                   [](Work due) { systemDispatcher().asyncOnMain(std::move(due)); });
}

void ManualClock::asyncOnGlobal(QualityOfService quality, Work work) {
    systemDispatcher().asyncOnGlobal(quality, std::move(work));
}

std::shared_ptr<DelayedWork> ManualClock::afterOnGlobal(std::chrono::milliseconds delay,
                                                        Work work) {
    return schedule_->add(delay, std::move(work), [](Work due) {
        systemDispatcher().asyncOnGlobal(QualityOfService::byDefault, std::move(due));
    });
}

std::shared_ptr<SerialQueue> ManualClock::makeSerialQueue(std::string label) {
    return systemDispatcher().makeSerialQueue(std::move(label));
}

}  // namespace veltrix::test
