// The setup window as its session sees it: the one door between the rules of setup and AppKit.
// Implemented by SetupWindow and, in tests, by a recorder of calls. Main thread only.
#pragma once

#include "setup/SetupActions.h"

#include <memory>
#include <string_view>

namespace veltrix {

class SetupView {
  public:
    virtual ~SetupView() = default;

    // Keeps the window, and with it this view, alive for as long as the result lives.
    [[nodiscard]] virtual std::shared_ptr<void> hold() = 0;

    [[nodiscard]] virtual SetupForm form() const = 0;
    virtual void clearPassword() = 0;
    // Every element of the window's `controls`, in list order.
    virtual void setControlsEnabled(bool enabled) = 0;
    virtual void setStatus(std::string_view sentence) = 0;
    // Ends the modal session and closes the window.
    virtual void endSession() = 0;
};

}  // namespace veltrix
