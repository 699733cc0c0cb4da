// What the tests of an operator script's run have in common: a resource folder with one script in
// it, a clock that stands still, and jobs that run beside the test.
#pragma once

#include "operator/ActionJob.h"
#include "support/ManualClock.h"
#include "support/ResourceFixture.h"
#include "support/WaitFor.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace veltrix::test {

// A job on a thread of its own. The test ends only when the job has.
class RunningJob {
  public:
    RunningJob(ActionJob job, Dispatcher& dispatcher)
        : thread_([this, job = std::move(job), &dispatcher] {
              reply_ = runActionJob(job, {}, dispatcher);
              done_ = true;
          }) {}
    ~RunningJob() { thread_.join(); }
    RunningJob(const RunningJob&) = delete;
    RunningJob& operator=(const RunningJob&) = delete;

    [[nodiscard]] bool done() const { return done_; }
    [[nodiscard]] Reply awaitReply() const {
        EXPECT_TRUE(waitFor([this] { return done(); }));
        return done_ ? reply_ : Reply();
    }

  private:
    std::atomic<bool> done_ = false;
    Reply reply_;
    std::thread thread_;
};

class ActionJobTest : public testing::Test {
  protected:
    // Steps are in the language of tests/child/Child.cpp.
    [[nodiscard]] ActionJob jobFor(std::string_view steps,
                                   std::optional<std::string> input = std::nullopt) const {
        return {
            resources.node(), {resources.script("desktop/service.mjs", steps)}, std::move(input)};
    }

    [[nodiscard]] Reply run(std::string_view steps,
                            std::optional<std::string> input = std::nullopt) {
        Reply reply = runActionJob(jobFor(steps, std::move(input)), {}, clock);
        EXPECT_TRUE(clock.pending().empty()) << "no limit outlives its script";
        return reply;
    }

    [[nodiscard]] std::string path(std::string_view name) const { return resources.scratch(name); }
    void touch(std::string_view name) const;

    const ResourceFixture resources;
    ManualClock clock;
};

// The replies that scripts of these tests print, and that is what they become.
inline constexpr std::string_view kPrintStarted = "print {\"ok\":true,\"code\":\"started\"}\n";
[[nodiscard]] Reply startedReply();

}  // namespace veltrix::test
