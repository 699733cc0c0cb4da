// The operator's view of the application: passes each wish on to the AppKit object it concerns.
// Owned by DesktopApp, whose parts it uses; main thread only.
#pragma once

#include "operator/OperatorShell.h"

@class DesktopApp;

namespace veltrix {

class DesktopShell final : public OperatorShell {
  public:
    explicit DesktopShell(DesktopApp* app) : app_(app) {}

    [[nodiscard]] FieldTexts fields() const override;
    void setNode(std::string_view path) override;
    [[nodiscard]] bool save() override;
    void setControlsEnabled(bool enabled) override;
    void setMenuActionsEnabled(bool enabled) override;
    void setStatus(std::string_view sentence) override;
    void mirrorStatusInToolTip() override;
    void bringForward() override;
    [[nodiscard]] bool confirm(const Confirmation& confirmation) override;
    [[nodiscard]] bool openFolder(const std::string& path) override;
    [[nodiscard]] bool openPage(const std::string& url) override;
    void runSetupSession(const std::string& executable, const std::string& home) override;

  private:
    DesktopApp* app_;  // owns this object, so it is not retained
};

}  // namespace veltrix
