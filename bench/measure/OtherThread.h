// A thread that does one thing at a time for whoever waits for it: the least that leaving the main
// thread and coming back to it can cost. Both sleep in the kernel, as threads at rest do.
#pragma once

#include <functional>
#include <thread>

namespace veltrix::bench {

class OtherThread {
  public:
    explicit OtherThread(std::function<bool()> task);
    OtherThread(const OtherThread&) = delete;
    OtherThread& operator=(const OtherThread&) = delete;
    ~OtherThread();

    // Has the task done over there, and sleeps until it is.
    [[nodiscard]] bool run();

  private:
    void serve();

    std::function<bool()> task_;
    int wanted_;  // event descriptors
    int done_;
    bool result_ = false;
    bool ending_ = false;
    std::thread thread_;
};

}  // namespace veltrix::bench
