#include "model/SetupModel.h"

namespace veltrix::test {
namespace {

constexpr std::string_view kLoginAction = "password.configure";

}  // namespace

void SetupModel::pressed(std::string_view action, bool trustProxy) {
    if (state != State::idle) {
        return;
    }
    const bool fits = password.size() >= 15 && password.size() <= 128;
    if (action == kLoginAction && !(paired && trustProxy && fits)) {
        status = "Account approval, loopback gateway consent and a 15-128-byte password are "
                 "required.";
        return;
    }
    state = State::requesting;
    controlsEnabled = false;
    status = "Working...";
    ++requests;
}

void SetupModel::answered(std::string_view action, const SetupReply& reply) {
    if (action == kLoginAction) {
        password.clear();
    }
    state = State::idle;
    controlsEnabled = true;
    paired = paired || reply.pairs;
    closings += reply.configuresLogin ? 1 : 0;
    status = reply.sentence;
}

bool SetupModel::closeWanted() {
    if (state == State::closed) {
        return true;
    }
    if (state != State::idle) {
        status = "Wait for the current setup request.";
        return false;
    }
    state = State::closing;
    password.clear();
    ++closings;
    return false;
}

void SetupModel::shutDown() {
    state = State::closed;
    sessionEnded = true;
}

}  // namespace veltrix::test
