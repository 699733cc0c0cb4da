// A setup channel with a real first-run process: the fixture child, which carries out the steps
// that a test gives it (see tests/child/Child.cpp), on a clock that the test moves. Main thread.
//
// Whatever a test did, at its end every completion has arrived exactly once and on the main
// thread, no limit is pending, no child is left and no descriptor more is open than before.
#pragma once

#include "setup/SetupIPC.h"
#include "support/ChildReport.h"
#include "support/ManualClock.h"
#include "support/ResourceFixture.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace veltrix::test {

// A manual clock that remembers what it was asked for. Any thread.
class RecordingClock final : public Dispatcher {
  public:
    ManualClock clock;

    // Makes a worker stand still at each completion it hands to the main thread until that has run
    // it: so whatever the worker still holds outlives it for certain. Set before any work.
    bool workersWaitForMain = false;

    // Every limit that was ever armed, in order, and the label of every serial queue.
    [[nodiscard]] std::vector<std::chrono::milliseconds> armed() const;
    [[nodiscard]] std::vector<std::string> labels() const;

    void asyncOnMain(Work work) override;
    void asyncOnMainAfter(std::chrono::milliseconds delay, Work work) override;
    void asyncOnGlobal(QualityOfService quality, Work work) override;
    [[nodiscard]] std::shared_ptr<DelayedWork> afterOnGlobal(std::chrono::milliseconds delay,
                                                             Work work) override;
    [[nodiscard]] std::shared_ptr<SerialQueue> makeSerialQueue(std::string label) override;

  private:
    mutable std::mutex mutex_;
    std::vector<std::chrono::milliseconds> armed_;
    std::vector<std::string> labels_;
};

class SetupIPCTest : public ::testing::Test {
  protected:
    static void SetUpTestSuite();
    SetupIPCTest();
    void TearDown() override;

    // What a first-run process does that is launched from now on, after it has reported itself and
    // begun to keep a log of the requests it reads.
    void firstRun(std::string_view steps) const;

    [[nodiscard]] std::shared_ptr<SetupIPC> makeChannel(const std::string& executable);

    void request(std::string action, Json::Object values = {});
    void close();
    // The same, and waits for the answer.
    Reply ask(std::string action, Json::Object values = {});
    void closeAndWait();

    struct Arrival {
        bool isReply;  // or the news that the channel has closed
        Reply reply;
    };
    // The completions so far, in order.
    [[nodiscard]] const std::vector<Arrival>& arrivals() const { return *arrivals_; }
    [[nodiscard]] bool awaitArrivals(std::size_t count) const;

    // The first-run process that was launched last.
    [[nodiscard]] ChildReport report() const { return awaitReport(resources.scratch("report")); }
    // The request lines that first-run processes have read, without their line feeds.
    [[nodiscard]] std::vector<std::string> received() const;
    [[nodiscard]] bool awaitReceived(std::size_t count) const;

    [[nodiscard]] static bool awaitFile(const std::string& path);
    static void touch(const std::string& path);
    // Waits until the child has exited, without reaping it.
    [[nodiscard]] static bool awaitExit(pid_t pid);
    [[nodiscard]] static bool awaitStop(pid_t pid);
    // Ends a child that nothing else ends, and waits until it has exited.
    static void kill(pid_t pid);

    const std::vector<int> descriptorsBefore;
    ResourceFixture resources;
    RecordingClock dispatcher;
    ManualClock& clock = dispatcher.clock;
    std::string home = resources.scratch("home");
    std::vector<std::string> environment{"PATH=/usr/bin:/bin"};
    std::shared_ptr<SetupIPC> channel;

  private:
    std::shared_ptr<std::vector<Arrival>> arrivals_ = std::make_shared<std::vector<Arrival>>();
    std::size_t asked_ = 0;
};

// Steps of the first-run process.
inline constexpr std::string_view kEchoEveryRequest = "echo-all\n";
inline constexpr std::string_view kReadOneRequestAndHang = "answer\nhang\n";

}  // namespace veltrix::test
