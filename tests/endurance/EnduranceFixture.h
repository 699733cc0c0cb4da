// Many rounds with real children on the system's real queues, with limits so short that they fall
// when they like: before a child has started, while it answers, in the moment of its exit. Whatever
// happened, at the end of a test no child is left and no descriptor more is open than before.
#pragma once

#include "common/Dispatch.h"
#include "operator/ActionJob.h"
#include "setup/SetupIPC.h"
#include "support/ResourceFixture.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace veltrix::test {

// The system's dispatcher with one length for every limit. Any thread.
class ShortLimits final : public Dispatcher {
  public:
    void setLimit(std::chrono::milliseconds limit) { limit_ = limit; }

    void asyncOnMain(Work work) override;
    void asyncOnMainAfter(std::chrono::milliseconds delay, Work work) override;
    void asyncOnGlobal(QualityOfService quality, Work work) override;
    [[nodiscard]] std::shared_ptr<DelayedWork> afterOnGlobal(std::chrono::milliseconds delay,
                                                             Work work) override;
    [[nodiscard]] std::shared_ptr<SerialQueue> makeSerialQueue(std::string label) override;

  private:
    std::atomic<std::chrono::milliseconds> limit_{std::chrono::minutes(5)};
};

// Fewer where sanitizers make every round slower.
[[nodiscard]] int rounds(int count);

class Endurance : public testing::Test {
  protected:
    Endurance();
    void TearDown() override;

    // Runs the fixture child with these steps, as an operator script.
    [[nodiscard]] ActionJob jobFor(std::string_view name, std::string_view steps) const;
    [[nodiscard]] Reply run(const ActionJob& job) { return runActionJob(job, {}, dispatcher); }

    [[nodiscard]] std::shared_ptr<SetupIPC> makeChannel(const std::string& executable);
    // What the first-run processes do that are launched from now on.
    void firstRun(std::string_view steps) const;

    // Asks `count` times and closes, and returns the replies once everything has been answered.
    [[nodiscard]] std::vector<Reply> useAndClose(const std::shared_ptr<SetupIPC>& channel,
                                                 int count) const;

    const std::vector<int> descriptorsBefore;
    const ResourceFixture resources;
    ShortLimits dispatcher;
};

}  // namespace veltrix::test
