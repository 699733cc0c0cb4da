// An operator whose world belongs to the test: a recording shell, queues that run when told, a
// bundle in a temporary folder, and scripts that never run but answer what the test wants.
#pragma once

#include "operator/Operator.h"
#include "support/RecordingShell.h"
#include "support/ResourceFixture.h"
#include "support/VirtualDispatcher.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace veltrix::test {

using Calls = std::vector<std::string>;

[[nodiscard]] Calls operator+(Calls first, const Calls& second);

// The sentence on the status line and then in the tool tip.
[[nodiscard]] Calls said(const std::string& sentence);

class OperatorTest : public testing::Test {
  protected:
    OperatorTest();

    // Performs the command and returns what the shell was told meanwhile.
    [[nodiscard]] Calls perform(std::string_view command);

    // Lets the running action end with this reply and returns what the shell was told then.
    [[nodiscard]] Calls answer(Reply reply);
    [[nodiscard]] Calls answer(std::string_view json) { return answer(*parseJsonObject(json)); }

    // Both, and only what the reply came to.
    [[nodiscard]] Calls outcome(std::string_view command, std::string_view json);

    void expectIdle() const;

    RecordingShell shell;
    VirtualDispatcher dispatcher;
    ResourceFixture resources;
    std::vector<std::string> environment{"PATH=/bin"};

    // What has been run so far.
    std::vector<ActionJob> jobs;
    std::vector<std::vector<std::string>> environments;

    std::shared_ptr<Operator> subject;

  private:
    Reply reply_;
};

// What the shell is told when an action starts, and first of all when it ends.
extern const Calls kStarted;
extern const Calls kEnded;

}  // namespace veltrix::test
