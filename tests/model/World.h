// The whole companion but for its windows: a real operator and, while one is open, a real setup
// session, on virtual queues, with a person who clicks at any moment, also while a question is up.
// Everything done to it is done to the models as well; after every step both must agree. One
// thread.
#pragma once

#include "model/Choices.h"
#include "model/OperatorModel.h"
#include "model/Story.h"
#include "operator/Operator.h"
#include "support/ResourceFixture.h"
#include "support/VirtualDispatcher.h"

#include <memory>
#include <optional>
#include <string>

namespace veltrix::test {

class World {
  public:
    World(Choices& choices, const ResourceFixture& bundle);
    ~World();

    // Plays a number of steps and lets everything under way come to its end. The story if anything
    // was wrong.
    [[nodiscard]] std::optional<std::string> play();

    // What has happened so far, right or wrong.
    [[nodiscard]] const std::string& story() const { return story_.text(); }

  private:
    class Shell;

    [[nodiscard]] OperatorServices services();
    [[nodiscard]] Reply runScript();

    void step();
    void choose();
    void runWorkers();
    void runMain();
    void quit();
    void compare();

    // What a person does while the operator waits for an answer.
    [[nodiscard]] bool answerQuestion();
    void useSetupWindow();

    Choices& choices_;
    const ResourceFixture& bundle_;
    VirtualDispatcher dispatcher_;
    Story story_;
    OperatorModel model_;
    std::unique_ptr<Shell> shell_;
    std::shared_ptr<Operator> operator_;
    bool bundleComplete_ = true;
    int scriptsRunning_ = 0;
    int questionsUp_ = 0;
};

}  // namespace veltrix::test
