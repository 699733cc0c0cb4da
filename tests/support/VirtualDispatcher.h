// A dispatcher without threads and without time: whatever is submitted waits until the test says
// that it runs, on the test's own thread. For tests without real children, where every order of
// events can be played through. One thread only.
#pragma once

#include "common/Dispatch.h"

#include <chrono>
#include <cstddef>
#include <deque>
#include <memory>
#include <string>
#include <vector>

namespace veltrix::test {

class VirtualDispatcher : public Dispatcher {
  public:
    VirtualDispatcher();
    ~VirtualDispatcher() override;

    // Runs what is on the main queue, and what that submits to it. Nothing when called from inside
    // work of the main queue, as in the real thing.
    void runMain();
    // Runs what is on the global and the serial queues, and what that submits to them.
    void runWorkers();
    // Both, until nothing is left but delayed work.
    void settle();

    // Moves the clock; what has become due is put on its queue and waits there.
    void advance(std::chrono::milliseconds time);

    [[nodiscard]] std::size_t onMain() const { return main_.size(); }
    [[nodiscard]] std::size_t onWorkers() const { return workers_.size(); }
    // Of everything submitted to the global queues so far, in order.
    [[nodiscard]] const std::vector<QualityOfService>& qualities() const { return qualities_; }
    // How far ahead every delayed work is, ascending.
    [[nodiscard]] std::vector<std::chrono::milliseconds> pending() const;

    void asyncOnMain(Work work) override;
    void asyncOnMainAfter(std::chrono::milliseconds delay, Work work) override;
    void asyncOnGlobal(QualityOfService quality, Work work) override;
    [[nodiscard]] std::shared_ptr<DelayedWork> afterOnGlobal(std::chrono::milliseconds delay,
                                                             Work work) override;
    [[nodiscard]] std::shared_ptr<SerialQueue> makeSerialQueue(std::string label) override;

  private:
    struct Timed;
    class Handle;
    class Serial;

    std::shared_ptr<Timed> schedule(std::chrono::milliseconds delay, bool onMain, Work work);

    std::deque<Work> main_;
    std::deque<Work> workers_;  // first in, first out keeps every serial queue's order
    std::vector<QualityOfService> qualities_;
    std::vector<std::shared_ptr<Timed>> timed_;  // by due time
    std::chrono::milliseconds now_{0};
    bool drainingMain_ = false;
};

}  // namespace veltrix::test
