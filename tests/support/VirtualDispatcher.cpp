#include "support/VirtualDispatcher.h"

#include <algorithm>
#include <utility>

namespace veltrix::test {

struct VirtualDispatcher::Timed {
    std::chrono::milliseconds due;
    bool onMain;
    Work work;  // empty once cancelled or handed on
};

class VirtualDispatcher::Handle final : public DelayedWork {
  public:
    Handle(VirtualDispatcher& owner, std::shared_ptr<Timed> timed)
        : owner_(owner), timed_(std::move(timed)) {}
    void cancel() override {
        const Work released = std::exchange(timed_->work, nullptr);
        std::erase(owner_.timed_, timed_);
    }

  private:
    VirtualDispatcher& owner_;
    std::shared_ptr<Timed> timed_;
};

class VirtualDispatcher::Serial final : public SerialQueue {
  public:
    Serial(VirtualDispatcher& owner, std::string label) : owner_(owner), label_(std::move(label)) {}
    void async(Work work) override { owner_.workers_.push_back(std::move(work)); }
    [[nodiscard]] const std::string& label() const override { return label_; }

  private:
    VirtualDispatcher& owner_;
    std::string label_;
};

namespace {

void runAll(std::deque<Work>& queue) {
    while (!queue.empty()) {
        const Work work = std::move(queue.front());
        queue.pop_front();
        work();
    }
}

}  // namespace

VirtualDispatcher::VirtualDispatcher() = default;

VirtualDispatcher::~VirtualDispatcher() = default;

void VirtualDispatcher::runMain() {
    if (drainingMain_) {
        return;
    }
    drainingMain_ = true;
    runAll(main_);
    drainingMain_ = false;
}

void VirtualDispatcher::runWorkers() {
    runAll(workers_);
}

void VirtualDispatcher::settle() {
    while (!main_.empty() || !workers_.empty()) {
        runWorkers();
        runMain();
    }
}

void VirtualDispatcher::advance(std::chrono::milliseconds time) {
    now_ += time;
    while (!timed_.empty() && timed_.front()->due <= now_) {
        const std::shared_ptr<Timed> due = timed_.front();
        timed_.erase(timed_.begin());
        (due->onMain ? main_ : workers_).push_back(std::exchange(due->work, nullptr));
    }
}

std::vector<std::chrono::milliseconds> VirtualDispatcher::pending() const {
    std::vector<std::chrono::milliseconds> delays;
    for (const auto& timed : timed_) {
        delays.push_back(timed->due - now_);
    }
    return delays;
}

void VirtualDispatcher::asyncOnMain(Work work) {
    main_.push_back(std::move(work));
}

void VirtualDispatcher::asyncOnMainAfter(std::chrono::milliseconds delay, Work work) {
    schedule(delay, true, std::move(work));
}

void VirtualDispatcher::asyncOnGlobal(QualityOfService quality, Work work) {
    qualities_.push_back(quality);
    workers_.push_back(std::move(work));
}

std::shared_ptr<DelayedWork> VirtualDispatcher::afterOnGlobal(std::chrono::milliseconds delay,
                                                              Work work) {
    return std::make_shared<Handle>(*this, schedule(delay, false, std::move(work)));
}

std::shared_ptr<SerialQueue> VirtualDispatcher::makeSerialQueue(std::string label) {
    return std::make_shared<Serial>(*this, std::move(label));
}

std::shared_ptr<VirtualDispatcher::Timed>
VirtualDispatcher::schedule(std::chrono::milliseconds delay, bool onMain, Work work) {
    auto timed = std::make_shared<Timed>(Timed{now_ + delay, onMain, std::move(work)});
    const auto later = std::upper_bound(
        timed_.begin(), timed_.end(), timed,
        [](const auto& left, const auto& right) { return left->due < right->due; });
    timed_.insert(later, timed);
    return timed;
}

}  // namespace veltrix::test
