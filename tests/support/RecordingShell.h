// The shell of a test: writes down every effect of an operator action, in order and with its
// arguments, and answers as the test wants. Fails the test when it is called from any other thread
// than the one that made it.
#pragma once

#include "operator/OperatorShell.h"

#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace veltrix::test {

class RecordingShell : public OperatorShell {
  public:
    // The calls so far, such as "save" or "status: Working...". Reading the fields has no effect
    // and is not written down.
    std::vector<std::string> calls;

    // Forgets the calls and returns them.
    std::vector<std::string> takeCalls();

    // How the shell answers; a test changes what it needs. Each may look and act like a person
    // would, for instance choose another command while an alert is up.
    FieldTexts texts{"/Users/sam/DVR", "/usr/bin/node", "/Volumes/Disk/DVR", "https://dvr.home",
                     "30"};
    std::function<bool()> onSave = [] { return true; };
    std::function<bool(const Confirmation&)> onConfirm = [](const Confirmation&) { return true; };
    std::function<bool()> onOpenFolder = [] { return true; };
    std::function<bool()> onOpenPage = [] { return true; };
    std::function<void()> onSetupSession = [] {};

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
    void checkThread() const;
    void note(std::string call);

    const std::thread::id thread_ = std::this_thread::get_id();
    std::string status_;
};

}  // namespace veltrix::test
