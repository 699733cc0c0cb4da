#include "core/OperatorFixture.h"

#include <utility>

namespace veltrix::test {

const Calls kStarted{"controls off", "menu actions off", "status: Working..."};
const Calls kEnded{"controls on", "menu actions on"};

Calls operator+(Calls first, const Calls& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

Calls said(const std::string& sentence) {
    return {"status: " + sentence, "tool tip: " + sentence};
}

OperatorTest::OperatorTest()
    : subject(Operator::make(
          shell,
          {dispatcher, resources.asFunction(), [this] { return environment; },
           [this](const ActionJob& job, const std::vector<std::string>& given, Dispatcher& used) {
               EXPECT_EQ(&used, &dispatcher);
               jobs.push_back(job);
               environments.push_back(given);
               return std::move(reply_);
           }})) {}

Calls OperatorTest::perform(std::string_view command) {
    subject->perform(command);
    return shell.takeCalls();
}

Calls OperatorTest::answer(Reply reply) {
    EXPECT_TRUE(subject->busy());
    reply_ = std::move(reply);
    dispatcher.runWorkers();
    EXPECT_EQ(shell.calls, Calls()) << "a worker never touches the shell";
    EXPECT_TRUE(subject->busy()) << "until the reply is handled";
    dispatcher.runMain();
    return shell.takeCalls();
}

Calls OperatorTest::outcome(std::string_view command, std::string_view json) {
    static_cast<void>(perform(command));
    Calls calls = answer(json);
    for (const std::string& expected : kEnded) {
        EXPECT_EQ(calls.empty() ? "" : calls.front(), expected);
        calls.erase(calls.begin());
    }
    expectIdle();
    return calls;
}

void OperatorTest::expectIdle() const {
    EXPECT_FALSE(subject->busy());
    EXPECT_EQ(dispatcher.onWorkers(), 0u);
    EXPECT_EQ(dispatcher.onMain(), 0u);
}

}  // namespace veltrix::test
