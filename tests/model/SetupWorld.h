// One setup window: a real session between a view that keeps what it is told and a channel that
// answers later, from a virtual serial queue. Everything done to it is done to the model as well,
// and after every step the two are compared. One thread.
#pragma once

#include "model/Choices.h"
#include "model/SetupModel.h"
#include "model/Story.h"
#include "setup/SetupSession.h"
#include "support/VirtualDispatcher.h"

#include <memory>
#include <string>

namespace veltrix::test {

class SetupWorld {
  public:
    SetupWorld(Choices& choices, Story& story, VirtualDispatcher& dispatcher);
    ~SetupWorld();

    // Something a person does to the window.
    void act();
    void wantClosed();
    void compare();

    [[nodiscard]] bool ended() const { return model_.state == SetupModel::State::closed; }

  private:
    class View;
    class Channel;

    void type();
    void press();

    Choices& choices_;
    Story& story_;
    SetupModel model_;
    bool wasPaired_ = false;
    std::shared_ptr<View> view_;
    std::shared_ptr<Channel> channel_;
    std::shared_ptr<SetupSession> session_;
};

}  // namespace veltrix::test
