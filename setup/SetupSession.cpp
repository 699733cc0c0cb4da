#include "setup/SetupSession.h"

#include "setup/SetupOutcomes.h"

#include <utility>

namespace veltrix {

std::shared_ptr<SetupSession>
SetupSession::make(SetupView& view, std::shared_ptr<SetupChannel> channel, std::string origin) {
    return std::shared_ptr<SetupSession>(
        new SetupSession(view, std::move(channel), std::move(origin)));
}

SetupSession::SetupSession(SetupView& view, std::shared_ptr<SetupChannel> channel,
                           std::string origin)
    : view_(view), channel_(std::move(channel)), origin_(std::move(origin)) {}

void SetupSession::performSetupAction(std::string_view action) {
    if (busy_) {
        return;
    }
    const SetupForm form = view_.form();
    if (action == kConfigurePassword && !loginAllowed(paired_, form)) {
        view_.setStatus(kLoginRefused);
        return;
    }
    busy_ = true;
    view_.setControlsEnabled(false);
    view_.setStatus(kSetupWorking);
    std::string name(action);
    channel_->request(name, setupValues(name, form, origin_),
                      [self = shared_from_this(), window = view_.hold(), name](const Reply& reply) {
                          self->handle(name, reply);
                      });
}

bool SetupSession::windowShouldClose() {
    if (closing_) {
        return true;
    }
    if (busy_) {
        view_.setStatus(kSetupWait);
        return false;
    }
    // The controls stay enabled meanwhile: `busy` alone makes the setup buttons inert.
    busy_ = true;
    view_.clearPassword();
    channel_->close([self = shared_from_this(), window = view_.hold()] {
        self->closing_ = true;
        self->view_.endSession();
    });
    return false;
}

void SetupSession::handle(std::string_view action, const Reply& reply) {
    if (action == kConfigurePassword) {
        view_.clearPassword();
    }
    busy_ = false;
    view_.setControlsEnabled(true);
    showOutcome(reply);
}

void SetupSession::showOutcome(const Reply& reply) {
    const std::string* member = stringMember(reply, "code");
    const std::string_view code = member != nullptr ? std::string_view(*member) : kSetupFailed;
    if (code == kEnrollmentPending) {
        const std::string* userCode = stringMember(reply, "userCode");
        view_.setStatus(userCode != nullptr ? std::string(kApprovalCodePrefix) + *userCode
                                            : std::string(kApprovalPending));
    } else if (code == kEnrollmentPaired) {
        paired_ = true;
        view_.setStatus(kApprovalValidated);
    } else if (code == kLoginConfigured) {
        view_.setStatus(kLoginConfiguredSentence);
        channel_->close([] {});
    } else {
        view_.setStatus(setupSentence(code));
    }
}

}  // namespace veltrix
