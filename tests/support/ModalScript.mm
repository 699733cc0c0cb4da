#include "support/ModalScript.h"

#include "common/RetainPtr.h"
#include "support/WaitFor.h"

#include <chrono>
#include <deque>

#include <gtest/gtest.h>

namespace {

constexpr NSTimeInterval kTurn = 0.005;

struct Step {
    std::string what;  // empty for an action
    std::function<bool()> condition;
    std::function<void()> action;
};

}  // namespace

// Its timer runs in no other mode than that of modal sessions.
@interface VeltrixModalPlayer : NSObject {
  @public
    veltrix::RetainPtr<NSTimer> _timer;
    std::deque<Step> _steps;
    std::chrono::steady_clock::time_point _waitingSince;
    bool _waiting;
    bool _inStep;
}
- (void)turn:(NSTimer*)timer;
- (void)giveUpWaitingFor:(const std::string&)what;
@end

@implementation VeltrixModalPlayer

- (void)turn:(NSTimer*)timer {
    if (_inStep || [NSApp modalWindow] == nil) {
        return;
    }
    if (_steps.empty()) {
        [self giveUpWaitingFor:"the end of the modal session"];
        return;
    }
    const Step& step = _steps.front();
    if (step.condition && !step.condition()) {
        [self giveUpWaitingFor:step.what];
        return;
    }
    _waiting = false;
    const Step taken = std::move(_steps.front());
    _steps.pop_front();
    if (taken.action) {
        _inStep = true;  // pressing a button lets the run loop work
        taken.action();
        _inStep = false;
    }
}

- (void)giveUpWaitingFor:(const std::string&)what {
    const auto now = std::chrono::steady_clock::now();
    if (!_waiting) {
        _waiting = true;
        _waitingSince = now;
    } else if (now - _waitingSince > veltrix::test::patience()) {
        ADD_FAILURE() << "waited in vain for " << what;
        _waiting = false;
        [NSApp stopModal];
    }
}

@end

namespace veltrix::test {

struct ModalScript::Player {
    RetainPtr<VeltrixModalPlayer> object = adoptNS([[VeltrixModalPlayer alloc] init]);
};

ModalScript::ModalScript() : player_(std::make_unique<Player>()) {
    VeltrixModalPlayer* const object = player_->object;
    object->_timer = [NSTimer timerWithTimeInterval:kTurn
                                             target:object
                                           selector:@selector(turn:)
                                           userInfo:nil
                                            repeats:YES];
    [[NSRunLoop currentRunLoop] addTimer:object->_timer forMode:NSModalPanelRunLoopMode];
}

ModalScript::~ModalScript() {
    VeltrixModalPlayer* const object = player_->object;
    [object->_timer invalidate];
}

ModalScript& ModalScript::when(std::string what, std::function<bool()> condition) {
    VeltrixModalPlayer* const object = player_->object;
    object->_steps.push_back({std::move(what), std::move(condition), {}});
    return *this;
}

ModalScript& ModalScript::then(std::function<void()> action) {
    VeltrixModalPlayer* const object = player_->object;
    object->_steps.push_back({{}, {}, std::move(action)});
    return *this;
}

bool ModalScript::finished() const {
    VeltrixModalPlayer* const object = player_->object;
    return object->_steps.empty();
}

}  // namespace veltrix::test
