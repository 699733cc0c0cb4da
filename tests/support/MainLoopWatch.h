// Asks the main thread, from a thread of its own, to answer, again and again: by way of the main
// queue, as everything that the program waits for comes back. Tells how often it did, and how long
// it let the watch wait at most. Made on any thread; may go while a question is open.
#pragma once

#include <chrono>
#include <memory>
#include <thread>

namespace veltrix::test {

class MainLoopWatch {
  public:
    MainLoopWatch();
    ~MainLoopWatch();
    MainLoopWatch(const MainLoopWatch&) = delete;
    MainLoopWatch& operator=(const MainLoopWatch&) = delete;

    [[nodiscard]] int answers() const;
    // From a question to its answer; an open question counts as soon as it is answered.
    [[nodiscard]] std::chrono::microseconds longestWait() const;

  private:
    struct State;
    const std::shared_ptr<State> state_;
    std::thread thread_;
};

}  // namespace veltrix::test
