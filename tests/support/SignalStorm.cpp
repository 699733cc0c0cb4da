#include "support/SignalStorm.h"

#include <signal.h>

#include <chrono>

namespace veltrix::test {
namespace {

constexpr int kSignal = SIGUSR1;

void ignoreIt(int) {}

// Stays installed: a late signal would otherwise end the program.
void installHandler() {
    struct sigaction action {};
    action.sa_handler = ignoreIt;
    sigemptyset(&action.sa_mask);
    action.sa_flags = 0;  // no SA_RESTART
    ::sigaction(kSignal, &action, nullptr);
}

}  // namespace

SignalStorm::SignalStorm() : target_(::pthread_self()) {
    installHandler();
    sender_ = std::thread([this] {
        while (!over_) {
            ::pthread_kill(target_, kSignal);
            ++sent_;
            std::this_thread::sleep_for(std::chrono::microseconds(50));
        }
    });
}

SignalStorm::~SignalStorm() {
    over_ = true;
    sender_.join();
}

void SignalStorm::waitForInterruptions(int count) const {
    for (const int goal = sent_ + count; sent_ < goal;) {
        std::this_thread::yield();
    }
}

}  // namespace veltrix::test
