// The shell as an operator action sees it: the one door between operator/ and the window system.
// Implemented by the application and, in tests, by a recorder of calls. Main thread only.
#pragma once

#include "operator/Confirmations.h"

#include <string>
#include <string_view>

namespace veltrix {

// The form's texts, exactly as typed.
struct FieldTexts {
    std::string home;
    std::string node;
    std::string storage;
    std::string origin;
    std::string retention;
};

class OperatorShell {
  public:
    virtual ~OperatorShell() = default;

    [[nodiscard]] virtual FieldTexts fields() const = 0;
    virtual void setNode(std::string_view path) = 0;

    // Validates and stores the desktop settings; on refusal it has said so itself.
    [[nodiscard]] virtual bool save() = 0;

    // Every element of `controls`, or of `menuActions`, in list order.
    virtual void setControlsEnabled(bool enabled) = 0;
    virtual void setMenuActionsEnabled(bool enabled) = 0;

    virtual void setStatus(std::string_view sentence) = 0;
    // Copies the status line to the tool tip of the menu-bar item.
    virtual void mirrorStatusInToolTip() = 0;
    // Makes the settings window key and front and activates the application.
    virtual void bringForward() = 0;

    // Asks, modally. True only if the second button was chosen.
    [[nodiscard]] virtual bool confirm(const Confirmation& confirmation) = 0;

    // False when the file manager, or the browser, could not be asked to open it.
    [[nodiscard]] virtual bool openFolder(const std::string& path) = 0;
    [[nodiscard]] virtual bool openPage(const std::string& url) = 0;

    // Runs the setup window as a modal session; returns when it has ended.
    virtual void runSetupSession(const std::string& executable, const std::string& home) = 0;
};

}  // namespace veltrix
