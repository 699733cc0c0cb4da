#include "model/SetupWorld.h"

#include "setup/SetupActions.h"

#include <array>
#include <utility>

namespace veltrix::test {
namespace {

// The login stands here more than once: it needs an approval, a consent and a password first.
constexpr std::array<std::string_view, 10> kActions{"tls.configure",      "enrollment.start",
                                                    "enrollment.poll",    "enrollment.resume",
                                                    "enrollment.renew",   "password.configure",
                                                    "password.configure", "password.configure",
                                                    "no.such.action",     ""};

}  // namespace

class SetupWorld::View final : public SetupView, public std::enable_shared_from_this<View> {
  public:
    [[nodiscard]] std::shared_ptr<void> hold() override { return shared_from_this(); }
    [[nodiscard]] SetupForm form() const override { return typed; }
    void clearPassword() override { typed.password.clear(); }
    void setControlsEnabled(bool enabled) override { controlsEnabled = enabled; }
    void setStatus(std::string_view sentence) override { status = sentence; }
    void endSession() override { ++sessionsEnded; }

    SetupForm typed;
    bool controlsEnabled = true;
    std::string status;
    int sessionsEnded = 0;
};

// The world outlives every completion: the session is over only when the channel has shut down.
class SetupWorld::Channel final : public SetupChannel {
  public:
    Channel(SetupWorld& world, VirtualDispatcher& dispatcher)
        : world_(world), dispatcher_(dispatcher), queue_(dispatcher.makeSerialQueue("first run")) {}

    void request(std::string action, Json::Object values,
                 std::function<void(const Reply&)> completion) override {
        world_.story_.expect(setupValues(action, world_.view_->typed, "origin") == values,
                             "other values than the action has");
        ++requests;
        queue_->async([this, action = std::move(action), completion = std::move(completion)] {
            dispatcher_.asyncOnMain(
                [this, action, completion] { answer(action, std::move(completion)); });
        });
    }

    void close(std::function<void()> completion) override {
        // The one after a login was set shuts down a channel that nobody waits for.
        const bool forGood = world_.model_.state == SetupModel::State::closing;
        ++closings;
        queue_->async([this, forGood, completion = std::move(completion)] {
            dispatcher_.asyncOnMain([this, forGood, completion] {
                if (forGood) {
                    world_.model_.shutDown();
                    world_.story_.tell("channel has shut down");
                }
                ++completions;
                completion();
                world_.compare();
            });
        });
    }

    std::size_t requests = 0;
    std::size_t closings = 0;
    std::size_t completions = 0;

  private:
    void answer(const std::string& action, const std::function<void(const Reply&)>& completion) {
        const SetupReply reply = anySetupReply(world_.choices_);
        world_.story_.tell("answer " + action + ": " + writeJson(Json(reply.reply)).value());
        world_.model_.answered(action, reply);
        ++completions;
        completion(reply.reply);
        world_.compare();
    }

    SetupWorld& world_;
    VirtualDispatcher& dispatcher_;
    const std::shared_ptr<SerialQueue> queue_;
};

SetupWorld::SetupWorld(Choices& choices, Story& story, VirtualDispatcher& dispatcher)
    : choices_(choices), story_(story), view_(std::make_shared<View>()),
      channel_(std::make_shared<Channel>(*this, dispatcher)),
      session_(SetupSession::make(*view_, channel_, "origin")) {}

SetupWorld::~SetupWorld() {
    if (story_.wentWrong()) {
        return;
    }
    story_.expect(channel_->completions == channel_->requests + channel_->closings,
                  "a completion is missing, or came twice");
    const std::weak_ptr<View> view = std::exchange(view_, nullptr);
    session_.reset();
    story_.expect(view.expired(), "something still holds the window");
}

void SetupWorld::act() {
    switch (choices_.below(10)) {
    case 0:
        wantClosed();
        break;
    case 1:
        view_->typed.trustProxy = !view_->typed.trustProxy;
        story_.tell(view_->typed.trustProxy ? "consent given" : "consent withdrawn");
        break;
    case 2:
    case 3:
        type();
        break;
    default:
        press();
    }
    compare();
}

void SetupWorld::press() {
    const std::string_view action = choices_.from(kActions);
    story_.tell("press " + std::string(action));
    // Before the session is told: the channel checks against what is expected.
    model_.pressed(action, view_->typed.trustProxy);
    session_->performSetupAction(action);
}

void SetupWorld::type() {
    constexpr std::array<std::size_t, 6> kLengths{15, 128, 14, 129, 0, 1};
    const std::size_t length = choices_.from(kLengths);
    story_.tell("type a password of " + std::to_string(length));
    model_.typed(std::string(length, 'p'));
    view_->typed.password = model_.password;
}

void SetupWorld::wantClosed() {
    story_.tell("close the window");
    const bool mayClose = model_.closeWanted();
    story_.expect(session_->windowShouldClose() == mayClose, "closes when it should not, or not");
}

void SetupWorld::compare() {
    using enum SetupModel::State;
    story_.expect(session_->busy() == (model_.state != idle), "busy without a request, or idle");
    story_.expect(session_->closing() == (model_.state == closed), "closing at the wrong time");
    story_.expect(session_->paired() == model_.paired, "paired by nothing, or not");
    story_.expect(session_->paired() || !wasPaired_, "no longer paired");
    story_.expect(view_->typed.password == model_.password, "the password stayed, or went");
    story_.expect(view_->controlsEnabled == model_.controlsEnabled, "the window's controls");
    story_.expect(view_->status == model_.status,
                  "says " + view_->status + " instead of " + model_.status);
    story_.expect(view_->sessionsEnded == (model_.sessionEnded ? 1 : 0), "the session's end");
    story_.expect(channel_->requests == model_.requests, "requests sent");
    story_.expect(channel_->closings == model_.closings, "closings asked for");
    wasPaired_ = session_->paired();
}

}  // namespace veltrix::test
