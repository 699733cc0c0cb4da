// The fixture of the setup window's tests: a setup window outside any session, or the "setup"
// command with its modal session, over a first-run script of the fixture child.
#pragma once

#include "shell/ShellTest.h"

#include "common/Json.h"
#import "setup/SetupWindow.h"
#include "support/ModalScript.h"

namespace veltrix::test {

class SetupWindowTest : public ShellTest {
  protected:
    SetupWindowTest();
    ~SetupWindowTest() override;

    // Makes a setup window that is shown but not run modally; it cannot be closed.
    void open();

    // What the first-run process does (see tests/child/Child.cpp). Every request it reads is kept.
    void firstRunDoes(std::string_view steps) const;
    // Answers every request with this reply.
    void firstRunReplies(std::string_view json) const;
    // The requests so far.
    [[nodiscard]] std::vector<Json::Object> requests() const;
    [[nodiscard]] static std::string actionOf(const Json::Object& request);
    [[nodiscard]] static Json::Object valuesOf(const Json::Object& request);

    // What "DVR_PUBLIC_ORIGIN" of the installation's settings file holds.
    void writeSettings(std::string_view contents) const;

    // The window that was opened, or the one of the running session.
    RetainPtr<SetupWindow> opened_;
    [[nodiscard]] SetupWindow* setup() const;
    [[nodiscard]] NSWindow* panel() const { return [setup() window]; }
    [[nodiscard]] std::string said() const { return textOf([setup() status]); }
    [[nodiscard]] bool controlsEnabled() const;
    [[nodiscard]] bool anyControlEnabled() const;

    // Presses a setup button and lets its reply come, outside a session.
    void pressToEnd(NSString* title);

    // The session that runs on the "setup" command, with a person at it.
    ModalScript script;
    void whenShown();
    void pressWhenShown(NSString* title);
    void whenSaid(const std::string& sentence);
    void closeAtTheEnd();
    void runSession();

    const std::string log = resources.scratch("requests");
};

}  // namespace veltrix::test
