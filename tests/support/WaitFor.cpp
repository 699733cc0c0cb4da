#include "support/WaitFor.h"

#include <thread>

namespace veltrix::test {
namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int kSlowness = 4;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
constexpr int kSlowness = 4;
#else
constexpr int kSlowness = 1;
#endif
#else
constexpr int kSlowness = 1;
#endif

// Between two looks at the condition; says nothing about how long anything takes.
constexpr std::chrono::microseconds kNap{200};

}  // namespace

std::chrono::milliseconds patience() {
    return std::chrono::seconds(15) * kSlowness;
}

bool waitFor(const std::function<bool()>& condition) {
    const auto deadline = std::chrono::steady_clock::now() + patience();
    for (;;) {
        serveMainQueue();
        if (condition()) {
            return true;
        }
        if (std::chrono::steady_clock::now() >= deadline) {
            return false;
        }
        std::this_thread::sleep_for(kNap);
    }
}

}  // namespace veltrix::test
