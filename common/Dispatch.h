// Queues and time: where work runs and when. Everything in the program that leaves the main thread
// or comes back to it goes through one Dispatcher, so that a test can put its own clock and its
// own queues in place. The system's dispatcher lives as long as the process; every call is safe
// from any thread.
//
// Modelled on Grand Central Dispatch (dispatch(3)), which is the macOS backend, down to its one
// trap: the main queue is not drained inside work that runs on the main queue. A modal session
// started from there would wait for ever for completions; modal things start from events only.
//
// Work must not throw: nobody could catch it, so it ends the program.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

namespace veltrix {

using Work = std::function<void()>;

// DISPATCH_QUEUE / QOS_CLASS of the global concurrent queues this program uses. On Linux both are
// served alike.
enum class QualityOfService { byDefault, userInitiated };

// Work that has been scheduled and can be called off. Dropping the handle cancels nothing.
class DelayedWork {
  public:
    virtual ~DelayedWork() = default;
    // After this the work no longer starts, and what it captured is released soon. Harmless when
    // it has already run or is running; does not wait for it.
    virtual void cancel() = 0;
};

// First in, first out, one at a time. Work already submitted still runs when the handle is
// dropped, also when its own work drops it.
class SerialQueue {
  public:
    virtual ~SerialQueue() = default;
    virtual void async(Work work) = 0;
    [[nodiscard]] virtual const std::string& label() const = 0;
};

class Dispatcher {
  public:
    virtual ~Dispatcher() = default;

    // On the main thread, in the order of submission, when the run loop gets there: also while a
    // modal session runs or a menu is held open.
    virtual void asyncOnMain(Work work) = 0;
    virtual void asyncOnMainAfter(std::chrono::milliseconds delay, Work work) = 0;

    // On some worker thread; any number at once.
    virtual void asyncOnGlobal(QualityOfService quality, Work work) = 0;

    // On a worker of the default quality of service, `delay` from now, unless cancelled.
    [[nodiscard]] virtual std::shared_ptr<DelayedWork>
    afterOnGlobal(std::chrono::milliseconds delay, Work work) = 0;

    [[nodiscard]] virtual std::shared_ptr<SerialQueue> makeSerialQueue(std::string label) = 0;
};

// Grand Central Dispatch on macOS (Dispatch_mac.cpp), standard-library threads elsewhere
// (Dispatch_linux.cpp, which has its main queue in MainQueue_linux.h).
[[nodiscard]] Dispatcher& systemDispatcher();

// Called once at entry, on the main thread: from then on the AppKit run loop drains the main
// queue, in its default, modal-panel and event-tracking modes.
void attachMainQueueToRunLoop();

}  // namespace veltrix
