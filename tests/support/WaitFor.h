// Waiting in tests: for a condition, with a deadline that no healthy machine ever reaches, while
// the main queue is being served. Main thread only.
#pragma once

#include <chrono>
#include <functional>

namespace veltrix::test {

// How long anything may take before a test gives up; longer when sanitizers slow everything down.
[[nodiscard]] std::chrono::milliseconds patience();

// Serves the main queue until the condition holds; false when that did not happen in time.
[[nodiscard]] bool waitFor(const std::function<bool()>& condition);

// Serves the main queue once: runs what is in it (MainLoop_*.cpp).
void serveMainQueue();

}  // namespace veltrix::test
