// The rules of one setup window: what its buttons send, what replies mean and when it may close.
// Owned by the window, one session a window; main thread only. A request or a closing that is
// under way keeps the session and its window alive.
#pragma once

#include "setup/SetupChannel.h"
#include "setup/SetupView.h"

#include <memory>
#include <string>
#include <string_view>

namespace veltrix {

class SetupSession final : public std::enable_shared_from_this<SetupSession> {
  public:
    // `origin` is the recorder's public origin; the view owns the session.
    [[nodiscard]] static std::shared_ptr<SetupSession>
    make(SetupView& view, std::shared_ptr<SetupChannel> channel, std::string origin);

    // A setup button with this action name was pressed.
    void performSetupAction(std::string_view action);

    // The person wants the window closed; true when it may close now.
    [[nodiscard]] bool windowShouldClose();

    [[nodiscard]] bool busy() const { return busy_; }        // a request or the closing
    [[nodiscard]] bool paired() const { return paired_; }    // an approval was confirmed here
    [[nodiscard]] bool closing() const { return closing_; }  // the channel has shut down
    [[nodiscard]] const std::string& origin() const { return origin_; }

  private:
    SetupSession(SetupView& view, std::shared_ptr<SetupChannel> channel, std::string origin);

    void handle(std::string_view action, const Reply& reply);
    void showOutcome(const Reply& reply);

    SetupView& view_;
    std::shared_ptr<SetupChannel> channel_;
    std::string origin_;
    bool busy_ = false;
    bool paired_ = false;
    bool closing_ = false;
};

}  // namespace veltrix
