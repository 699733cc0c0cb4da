#include "support/MainLoopWatch.h"

#include "common/Dispatch.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>

namespace veltrix::test {
namespace {

// So that the questions themselves are no load.
constexpr std::chrono::milliseconds kPause{1};

}  // namespace

struct MainLoopWatch::State {
    std::mutex mutex;
    std::condition_variable changed;
    bool over = false;
    int asked = 0;
    int answered = 0;
    std::chrono::microseconds longest{0};
};

MainLoopWatch::MainLoopWatch() : state_(std::make_shared<State>()) {
    thread_ = std::thread([state = state_] {
        std::unique_lock lock(state->mutex);
        while (!state->over) {
            ++state->asked;
            lock.unlock();
            const auto began = std::chrono::steady_clock::now();
            systemDispatcher().asyncOnMain([state, began] {
                const auto waited = std::chrono::duration_cast<std::chrono::microseconds>(
                    std::chrono::steady_clock::now() - began);
                const std::lock_guard answering(state->mutex);
                state->longest = std::max(state->longest, waited);
                ++state->answered;
                state->changed.notify_one();
            });
            lock.lock();
            state->changed.wait(lock,
                                [&] { return state->over || state->answered == state->asked; });
            state->changed.wait_for(lock, kPause, [&] { return state->over; });
        }
    });
}

MainLoopWatch::~MainLoopWatch() {
    {
        const std::lock_guard lock(state_->mutex);
        state_->over = true;
        state_->changed.notify_one();
    }
    thread_.join();
}

int MainLoopWatch::answers() const {
    const std::lock_guard lock(state_->mutex);
    return state_->answered;
}

std::chrono::microseconds MainLoopWatch::longestWait() const {
    const std::lock_guard lock(state_->mutex);
    return state_->longest;
}

}  // namespace veltrix::test
