// The system's real queues on a clock that stands still until the test moves it: work runs at once
// and on real threads, delayed work only when its time has been reached. So a limit of minutes is
// asserted to the millisecond, and nobody waits for it. Safe from any thread.
#pragma once

#include "common/Dispatch.h"

#include <chrono>
#include <memory>
#include <string>
#include <vector>

namespace veltrix::test {

class ManualClock final : public Dispatcher {
  public:
    ManualClock();
    ~ManualClock() override;

    // Moves the clock and submits, in the order of their times, whatever has become due.
    void advance(std::chrono::milliseconds time);

    // How far ahead every delayed work is that has neither started nor been cancelled, ascending.
    [[nodiscard]] std::vector<std::chrono::milliseconds> pending() const;

    // Waits until `count` delayed works are pending; false when that does not happen in time.
    [[nodiscard]] bool waitForPending(std::size_t count) const;

    void asyncOnMain(Work work) override;
    void asyncOnMainAfter(std::chrono::milliseconds delay, Work work) override;
    void asyncOnGlobal(QualityOfService quality, Work work) override;
    [[nodiscard]] std::shared_ptr<DelayedWork> afterOnGlobal(std::chrono::milliseconds delay,
                                                             Work work) override;
    [[nodiscard]] std::shared_ptr<SerialQueue> makeSerialQueue(std::string label) override;

  private:
    class Schedule;
    const std::shared_ptr<Schedule> schedule_;
};

}  // namespace veltrix::test
