// The companion's own way to a script and back, as the application takes it, without windows: an
// operator with a shell that shows nothing, on the system's queues. Main thread.
#pragma once

#include "operator/Operator.h"

#include <functional>
#include <memory>
#include <string>

namespace veltrix::bench {

// Runs work of the main queue until `done`; sleeps while there is none.
using ServeMainQueue = std::function<void(const std::function<bool()>& done)>;

// Serves the main queue without a run loop: the waker writes to an event descriptor and the main
// thread sleeps on it, as a run loop does at heart. Call it once.
[[nodiscard]] ServeMainQueue plainMainLoop();

// Counts outcomes; everything else that an operator asks of its shell is done at once.
class SilentShell final : public OperatorShell {
  public:
    explicit SilentShell(std::string executable) : executable_(std::move(executable)) {}

    [[nodiscard]] bool atEnd() const { return atEnd_; }
    void begin() { atEnd_ = false; }
    [[nodiscard]] bool saidRunning() const;

    [[nodiscard]] FieldTexts fields() const override;
    void setNode(std::string_view) override {}
    [[nodiscard]] bool save() override { return true; }
    void setControlsEnabled(bool) override {}
    void setMenuActionsEnabled(bool) override {}
    void setStatus(std::string_view sentence) override { status_ = sentence; }
    void mirrorStatusInToolTip() override { atEnd_ = true; }
    void bringForward() override {}
    [[nodiscard]] bool confirm(const Confirmation&) override { return true; }
    [[nodiscard]] bool openFolder(const std::string&) override { return true; }
    [[nodiscard]] bool openPage(const std::string&) override { return true; }
    void runSetupSession(const std::string&, const std::string&) override {}

  private:
    std::string executable_;
    std::string_view status_;
    bool atEnd_ = false;
};

// Performs "status" from the click to the sentence.
class Companion {
  public:
    Companion(std::string executable, ServeMainQueue serve);
    [[nodiscard]] bool run();
    // The job alone, on the calling thread: the same without queues and handovers.
    [[nodiscard]] bool runJobOnly() const;

  private:
    SilentShell shell_;
    ServeMainQueue serve_;
    std::shared_ptr<Operator> operator_;
};

}  // namespace veltrix::bench
