// A person at a modal window: a list of steps, each carried out once its time has come, while the
// modal session blocks the test. Nothing else runs the session's loop, so whatever a step waits for
// has really arrived in it. Main thread only.
//
//     ModalScript script;
//     script.when("a window", [] { return [NSApp modalWindow] != nil; })
//         .then([] { press(...); })
//     [app perform:"setup"];
//     EXPECT_TRUE(script.finished());
#pragma once

#import <AppKit/AppKit.h>

#include <functional>
#include <memory>
#include <string>

namespace veltrix::test {

class ModalScript {
  public:
    ModalScript();
    ~ModalScript();
    ModalScript(const ModalScript&) = delete;
    ModalScript& operator=(const ModalScript&) = delete;

    // Waits for the condition. When it never comes true the test fails and the session is ended.
    ModalScript& when(std::string what, std::function<bool()> condition);
    // Does something; at most one such step is taken in one turn of the session's loop.
    ModalScript& then(std::function<void()> action);

    [[nodiscard]] bool finished() const;

  private:
    struct Player;
    std::unique_ptr<Player> player_;
};

}  // namespace veltrix::test
