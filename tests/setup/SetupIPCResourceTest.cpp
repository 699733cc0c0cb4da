// The channel at the system's limits, and next to other users of descriptors and processes.
#include "SetupIPCFixture.h"
#include "UnprivilegedUser.h"
#include "common/UniqueFd.h"
#include "operator/ActionJob.h"
#include "support/Processes.h"
#include "support/WaitFor.h"

#include <fcntl.h>
#include <sys/resource.h>

#include <algorithm>
#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace veltrix::test {
namespace {

// Lowers or raises a soft limit for a while.
class SoftLimit {
  public:
    SoftLimit(int resource, rlim_t value) : resource_(resource) {
        EXPECT_EQ(::getrlimit(id(), &before_), 0);
        rlimit limit = before_;
        limit.rlim_cur = std::min(value, before_.rlim_max);
        EXPECT_EQ(::setrlimit(id(), &limit), 0);
    }
    ~SoftLimit() { ::setrlimit(id(), &before_); }
    SoftLimit(const SoftLimit&) = delete;
    SoftLimit& operator=(const SoftLimit&) = delete;

  private:
    // glibc gives the parameter an enumeration type of its own in C++.
#if defined(__GLIBC__)
    [[nodiscard]] __rlimit_resource id() const {
        return static_cast<__rlimit_resource>(resource_);
    }
#else
    [[nodiscard]] int id() const {
        return resource_;
    }
#endif

    const int resource_;
    rlimit before_{};
};

// Fills every gap below the highest open descriptor, so that the next ones follow it.
std::vector<UniqueFd> fillGaps() {
    std::vector<UniqueFd> fillers;
    for (const int highest = openDescriptors().back();;) {
        fillers.emplace_back(::open("/dev/null", O_RDONLY | O_CLOEXEC));
        if (fillers.back().get() > highest) {
            fillers.pop_back();
            return fillers;
        }
    }
}

class SetupIPCResources : public SetupIPCTest {};

TEST_F(SetupIPCResources, ThatRunOutOfDescriptorsGiveAFailureReply) {
    firstRun(kEchoEveryRequest);
    const std::vector<UniqueFd> fillers = fillGaps();
    const std::vector<int> open = openDescriptors();
    const auto next = static_cast<rlim_t>(open.back() + 1);
    for (rlim_t granted = 0; granted < 4; ++granted) {
        {
            const SoftLimit limit(RLIMIT_NOFILE, next + granted);
            EXPECT_EQ(ask("enrollment.poll"), setupFailureReply()) << granted;
        }
        EXPECT_FALSE(hasChildren());
        closeAndWait();
        EXPECT_EQ(openDescriptors(), open) << granted;
    }
    EXPECT_EQ(dispatcher.armed(), std::vector<std::chrono::milliseconds>());
    const SoftLimit limit(RLIMIT_NOFILE, next + 4);
    EXPECT_EQ(ask("enrollment.poll").at("action"), Json("enrollment.poll"));
}

TEST_F(SetupIPCResources, ThatRunOutOfProcessesGiveAFailureReplyAndNoSecondTry) {
    firstRun(kEchoEveryRequest);
    closeAndWait();  // the worker threads exist from now on
    {
        const SoftLimit limit(RLIMIT_NPROC, 0);
        const UnprivilegedUser nobody;
        EXPECT_EQ(ask("enrollment.poll"), setupFailureReply());
    }
    EXPECT_FALSE(hasChildren());
    EXPECT_EQ(dispatcher.armed(), std::vector<std::chrono::milliseconds>());
    EXPECT_EQ(received().size(), 0U);
    EXPECT_EQ(ask("enrollment.poll").at("action"), Json("enrollment.poll"));
}

TEST_F(SetupIPCResources, OfOthersAreNotInherited) {
    firstRun(kEchoEveryRequest);
    {
        const SoftLimit limit(RLIMIT_NOFILE, 4096);
        std::vector<UniqueFd> others;
        for (int count = 0; count < 50; ++count) {
            const UniqueFd file(::open("/dev/null", O_RDONLY));
            others.emplace_back(::fcntl(file.get(), count % 2 == 0 ? F_DUPFD : F_DUPFD_CLOEXEC,
                                        count < 25 ? 3 : 1001));
            ASSERT_TRUE(others.back());
        }
        static_cast<void>(ask("enrollment.poll"));
        EXPECT_EQ(report().descriptors, (std::vector<int>{0, 1, 2}));
    }
}

TEST_F(SetupIPCResources, StayTheSameOverManyRequestsAndProcesses) {
    firstRun(kEchoEveryRequest);
    for (int round = 0; round < 50; ++round) {
        static_cast<void>(ask("enrollment.poll"));
        EXPECT_EQ(openDescriptors().size(), descriptorsBefore.size() + 2);
        if (round % 2 == 0) {
            kill(report().pid);
        } else {
            closeAndWait();
        }
    }
}

// An operator action and the first-run process at the same time: what one holds of the other's
// pipes would keep the other from ever seeing the end of a stream.
class SetupIPCNextToAnAction : public SetupIPCTest {
  protected:
    SetupIPCNextToAnAction() { firstRun(kEchoEveryRequest); }
    ~SetupIPCNextToAnAction() override {
        if (worker_.joinable()) {
            touch(go);
            worker_.join();
        }
    }

    // Reports itself and lives until `go` exists, then reads its input to the end.
    void startAction() {
        const std::string script = resources.script(
            "desktop/service.mjs", "report " + resources.scratch("action") + "\nawait " + go +
                                       "\nread-input " + resources.scratch("payload") +
                                       "\nprint {\"ok\":true}\n");
        // More than a pipe holds, so that the writing end stays open until `go`.
        const ActionJob job{resources.node(), {script, "install"}, std::string(300'000, 'i')};
        worker_ = std::thread([this, job, variables = environment] {
            reply_ = runActionJob(job, variables, dispatcher);
            done_ = true;
        });
    }

    void finishAction() {
        touch(go);
        ASSERT_TRUE(waitFor([this] { return done_.load(); }));
        worker_.join();
        EXPECT_EQ(reply_, (Reply{{"ok", Json(true)}}));
    }

    [[nodiscard]] ChildReport actionReport() const {
        return awaitReport(resources.scratch("action"));
    }

    const std::string go = resources.scratch("go");

  private:
    std::thread worker_;
    Reply reply_;
    std::atomic<bool> done_ = false;
};

TEST_F(SetupIPCNextToAnAction, StartedBeforeItLeavesTheActionItsOwnPipes) {
    static_cast<void>(ask("enrollment.poll"));
    startAction();
    EXPECT_EQ(actionReport().descriptors, (std::vector<int>{0, 1, 2}));
    // The first-run process sees the end of its input although the action runs.
    closeAndWait();
    EXPECT_EQ(clock.pending(), std::vector<std::chrono::milliseconds>());
    finishAction();
}

TEST_F(SetupIPCNextToAnAction, StartedAfterItLeavesTheActionItsOwnPipes) {
    startAction();
    static_cast<void>(actionReport());
    static_cast<void>(ask("enrollment.poll"));
    EXPECT_EQ(report().descriptors, (std::vector<int>{0, 1, 2}));
    // The action sees the end of its input, and we that of its output, while the other one runs.
    finishAction();
    EXPECT_TRUE(processExists(report().pid));
    EXPECT_EQ(ask("enrollment.renew").at("action"), Json("enrollment.renew"));
}

TEST_F(SetupIPCNextToAnAction, CrashesWithoutTheActionNoticing) {
    startAction();
    static_cast<void>(actionReport());
    static_cast<void>(ask("enrollment.poll"));
    kill(report().pid);
    EXPECT_EQ(ask("enrollment.poll").at("action"), Json("enrollment.poll"));
    EXPECT_TRUE(processExists(actionReport().pid));
    finishAction();
}

}  // namespace
}  // namespace veltrix::test
