#include "measure/Companion.h"

#include "common/Environment.h"
#include "common/MainQueue_linux.h"
#include "measure/Measure.h"
#include "operator/Outcomes.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cstdint>
#include <utility>

namespace veltrix::bench {
namespace {

int eventDescriptor() {
    static const int descriptor = eventfd(0, EFD_CLOEXEC);
    return descriptor;
}

void wakeMainThread() {
    const std::uint64_t one = 1;
    if (write(eventDescriptor(), &one, sizeof one) != sizeof one) {
        giveUp("cannot wake the main thread");
    }
}

}  // namespace

ServeMainQueue plainMainLoop() {
    setMainQueueWaker(wakeMainThread);
    return [](const std::function<bool()>& done) {
        while (!done()) {
            std::uint64_t wakes = 0;
            if (read(eventDescriptor(), &wakes, sizeof wakes) == sizeof wakes) {
                drainMainQueue();
            }
        }
    };
}

bool SilentShell::saidRunning() const {
    return status_ == operatorSentence("running");
}

FieldTexts SilentShell::fields() const {
    return {"/bench/home", executable_, "/bench/storage", "https://dvr.home", "30"};
}

Companion::Companion(std::string executable, ServeMainQueue serve)
    : shell_(std::move(executable)), serve_(std::move(serve)),
      operator_(Operator::make(shell_, {systemDispatcher(), [] { return std::string("/bench"); },
                                        processEnvironment})) {}

bool Companion::run() {
    shell_.begin();
    operator_->perform("status");
    serve_([this] { return shell_.atEnd(); });
    return shell_.saidRunning();
}

bool Companion::runJobOnly() const {
    const Reply reply = runActionJob({shell_.fields().node, childArguments(), std::nullopt},
                                     processEnvironment(), systemDispatcher());
    return isTrueMember(reply, "ok");
}

}  // namespace veltrix::bench
