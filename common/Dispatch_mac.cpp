// The dispatcher on macOS: a thin face over Grand Central Dispatch's C interface (dispatch(3)).
#include "common/Dispatch.h"

#include <dispatch/dispatch.h>

#include <atomic>
#include <utility>

namespace veltrix {
namespace {

// Every function handed to Grand Central Dispatch carries its work in a box of its own.
void runAndFree(void* context) noexcept {
    const std::unique_ptr<Work> work(static_cast<Work*>(context));
    (*work)();
}

void async(dispatch_queue_t queue, Work work) {
    dispatch_async_f(queue, new Work(std::move(work)), runAndFree);
}

dispatch_time_t fromNow(std::chrono::milliseconds delay) {
    return dispatch_time(DISPATCH_TIME_NOW,
                         std::chrono::duration_cast<std::chrono::nanoseconds>(delay).count());
}

dispatch_queue_t globalQueue(QualityOfService quality) {
    return dispatch_get_global_queue(
        quality == QualityOfService::userInitiated ? QOS_CLASS_USER_INITIATED : QOS_CLASS_DEFAULT,
        0);
}

// A one-shot timer source rather than dispatch_after: cancelling it leaves nothing pending.
class GcdDelayedWork final : public DelayedWork {
  public:
    GcdDelayedWork(std::chrono::milliseconds delay, Work work)
        : source_(dispatch_source_create(DISPATCH_SOURCE_TYPE_TIMER, 0, 0,
                                         globalQueue(QualityOfService::byDefault))) {
        dispatch_set_context(source_, new Firing{source_, std::move(work)});
        dispatch_source_set_event_handler_f(source_, fire);
        dispatch_source_set_cancel_handler_f(source_, release);
        dispatch_source_set_timer(source_, fromNow(delay), DISPATCH_TIME_FOREVER, 0);
        // The running timer owns a reference of its own, given up by its cancel handler.
        dispatch_retain(source_);
        dispatch_resume(source_);
    }
    GcdDelayedWork(const GcdDelayedWork&) = delete;
    GcdDelayedWork& operator=(const GcdDelayedWork&) = delete;
    ~GcdDelayedWork() override { dispatch_release(source_); }

    void cancel() override { dispatch_source_cancel(source_); }

  private:
    struct Firing {
        dispatch_source_t source;
        Work work;
    };

    static void fire(void* context) noexcept {
        auto* firing = static_cast<Firing*>(context);
        firing->work();
        dispatch_source_cancel(firing->source);
    }

    static void release(void* context) noexcept {
        const std::unique_ptr<Firing> firing(static_cast<Firing*>(context));
        dispatch_release(firing->source);
    }

    dispatch_source_t source_;
};

class GcdSerialQueue final : public SerialQueue {
  public:
    explicit GcdSerialQueue(std::string label)
        : label_(std::move(label)),
          queue_(dispatch_queue_create(label_.c_str(), DISPATCH_QUEUE_SERIAL)) {}
    GcdSerialQueue(const GcdSerialQueue&) = delete;
    GcdSerialQueue& operator=(const GcdSerialQueue&) = delete;
    ~GcdSerialQueue() override { dispatch_release(queue_); }

    void async(Work work) override { veltrix::async(queue_, std::move(work)); }
    [[nodiscard]] const std::string& label() const override { return label_; }

  private:
    std::string label_;
    dispatch_queue_t queue_;
};

class GcdDispatcher final : public Dispatcher {
  public:
    void asyncOnMain(Work work) override { async(dispatch_get_main_queue(), std::move(work)); }

    void asyncOnMainAfter(std::chrono::milliseconds delay, Work work) override {
        dispatch_after_f(fromNow(delay), dispatch_get_main_queue(), new Work(std::move(work)),
                         runAndFree);
    }

    void asyncOnGlobal(QualityOfService quality, Work work) override {
        async(globalQueue(quality), std::move(work));
    }

    std::shared_ptr<DelayedWork> afterOnGlobal(std::chrono::milliseconds delay,
                                               Work work) override {
        return std::make_shared<GcdDelayedWork>(delay, std::move(work));
    }

    std::shared_ptr<SerialQueue> makeSerialQueue(std::string label) override {
        return std::make_shared<GcdSerialQueue>(std::move(label));
    }
};

}  // namespace

Dispatcher& systemDispatcher() {
    static GcdDispatcher* const dispatcher = new GcdDispatcher;  // outlives every static
    return *dispatcher;
}

// The main queue is bound to the main run loop in its common modes, to which AppKit adds the
// modal-panel and event-tracking modes: that is why the setup channel's completions arrive inside
// the setup window's modal session.
void attachMainQueueToRunLoop() {}

}  // namespace veltrix
