// While this lives, the thread that made it is interrupted all the time by a signal whose handler
// does not restart system calls: every one of them may fail with EINTR.
#pragma once

#include <pthread.h>

#include <atomic>
#include <thread>

namespace veltrix::test {

class SignalStorm {
  public:
    SignalStorm();
    ~SignalStorm();
    SignalStorm(const SignalStorm&) = delete;
    SignalStorm& operator=(const SignalStorm&) = delete;

    // Returns once the signal has been sent that often from now on.
    void waitForInterruptions(int count) const;

  private:
    const pthread_t target_;
    std::atomic<bool> over_ = false;
    std::atomic<int> sent_ = 0;
    std::thread sender_;
};

}  // namespace veltrix::test
