#include "SetupIPCFixture.h"

#include "common/Files.h"
#include "common/Pipe.h"
#include "support/Processes.h"
#include "support/TempFolder.h"
#include "support/WaitFor.h"

#include <signal.h>
#include <sys/wait.h>

#include <fstream>
#include <future>
#include <sstream>
#include <thread>
#include <utility>

namespace veltrix::test {
namespace {

const std::thread::id kMainThread = std::this_thread::get_id();

// waitid(2) that leaves the child to whoever owns it. A child that is nobody's any more counts.
bool awaitChange(pid_t pid, int kind) {
    return waitFor([pid, kind] {
        siginfo_t info{};
        const int result = ::waitid(P_PID, static_cast<id_t>(pid), &info, kind | WNOHANG | WNOWAIT);
        return result != 0 || info.si_pid == pid;
    });
}

}  // namespace

std::vector<std::chrono::milliseconds> RecordingClock::armed() const {
    const std::lock_guard lock(mutex_);
    return armed_;
}

std::vector<std::string> RecordingClock::labels() const {
    const std::lock_guard lock(mutex_);
    return labels_;
}

void RecordingClock::asyncOnMain(Work work) {
    if (!workersWaitForMain) {
        clock.asyncOnMain(std::move(work));
        return;
    }
    const auto finished = std::make_shared<std::promise<void>>();
    clock.asyncOnMain([work = std::move(work), finished]() mutable {
        work();
        work = nullptr;
        finished->set_value();
    });
    finished->get_future().wait();
}

void RecordingClock::asyncOnMainAfter(std::chrono::milliseconds delay, Work work) {
    clock.asyncOnMainAfter(delay, std::move(work));
}

void RecordingClock::asyncOnGlobal(QualityOfService quality, Work work) {
    clock.asyncOnGlobal(quality, std::move(work));
}

std::shared_ptr<DelayedWork> RecordingClock::afterOnGlobal(std::chrono::milliseconds delay,
                                                           Work work) {
    {
        const std::lock_guard lock(mutex_);
        armed_.push_back(delay);
    }
    return clock.afterOnGlobal(delay, std::move(work));
}

std::shared_ptr<SerialQueue> RecordingClock::makeSerialQueue(std::string label) {
    {
        const std::lock_guard lock(mutex_);
        labels_.push_back(label);
    }
    return clock.makeSerialQueue(std::move(label));
}

void SetupIPCTest::SetUpTestSuite() {
    ignoreBrokenPipes();
}

SetupIPCTest::SetupIPCTest()
    : descriptorsBefore(openDescriptors()), channel(makeChannel(resources.node())) {}

void SetupIPCTest::TearDown() {
    EXPECT_TRUE(awaitArrivals(asked_)) << "a completion is missing";
    channel.reset();
    EXPECT_TRUE(waitFor([] { return !hasChildren(); })) << "a child is left";
    EXPECT_TRUE(waitFor([this] { return openDescriptors() == descriptorsBefore; }));
    serveMainQueue();
    EXPECT_EQ(arrivals().size(), asked_) << "a completion came more than once";
    EXPECT_TRUE(clock.pending().empty()) << "a limit is still pending";
}

void SetupIPCTest::firstRun(std::string_view steps) const {
    std::string all = "report " + resources.scratch("report") + "\n";
    all += "log-input " + resources.scratch("received") + "\n";
    resources.script("desktop/first-run.mjs", all.append(steps));
}

std::shared_ptr<SetupIPC> SetupIPCTest::makeChannel(const std::string& executable) {
    return SetupIPC::make(
        executable, home,
        {dispatcher, resources.asFunction(), [entries = &environment] { return *entries; }});
}

void SetupIPCTest::request(std::string action, Json::Object values) {
    ++asked_;
    channel->request(std::move(action), std::move(values),
                     [arrivals = arrivals_](const Reply& reply) {
                         EXPECT_EQ(std::this_thread::get_id(), kMainThread);
                         arrivals->push_back({true, reply});
                     });
}

void SetupIPCTest::close() {
    ++asked_;
    channel->close([arrivals = arrivals_] {
        EXPECT_EQ(std::this_thread::get_id(), kMainThread);
        arrivals->push_back({false, {}});
    });
}

Reply SetupIPCTest::ask(std::string action, Json::Object values) {
    request(std::move(action), std::move(values));
    if (!awaitArrivals(asked_)) {
        ADD_FAILURE() << "no reply";
        return {};
    }
    return arrivals().back().reply;
}

void SetupIPCTest::closeAndWait() {
    close();
    EXPECT_TRUE(awaitArrivals(asked_)) << "not closed";
}

bool SetupIPCTest::awaitArrivals(std::size_t count) const {
    return waitFor([this, count] { return arrivals_->size() >= count; });
}

std::vector<std::string> SetupIPCTest::received() const {
    std::istringstream log(contentsOf(resources.scratch("received")));
    std::vector<std::string> lines;
    for (std::string line; std::getline(log, line);) {
        lines.push_back(line);
    }
    return lines;
}

bool SetupIPCTest::awaitReceived(std::size_t count) const {
    return waitFor([this, count] { return received().size() >= count; });
}

bool SetupIPCTest::awaitFile(const std::string& path) {
    return waitFor([&path] { return fileExists(path); });
}

void SetupIPCTest::touch(const std::string& path) {
    std::ofstream{path};
}

bool SetupIPCTest::awaitExit(pid_t pid) {
    return awaitChange(pid, WEXITED);
}

bool SetupIPCTest::awaitStop(pid_t pid) {
    return awaitChange(pid, WSTOPPED);
}

void SetupIPCTest::kill(pid_t pid) {
    ASSERT_GT(pid, 0);
    ASSERT_EQ(::kill(pid, SIGKILL), 0);
    ASSERT_TRUE(awaitExit(pid));
}

}  // namespace veltrix::test
