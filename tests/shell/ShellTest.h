// The fixture of the shell's tests: a launched application with real windows, menus and children,
// but with settings, arguments, scripts and a clock of its own. Nothing of the account that runs
// the tests is read or changed.
#pragma once

#import "app/DesktopApp.h"
#include "app/DesktopSettings.h"
#include "common/RetainPtr.h"
#include "support/ManualClock.h"
#include "support/OpenedThings.h"
#include "support/ResourceFixture.h"

#import <AppKit/AppKit.h>

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

// Writes down what it answers to requests to terminate, and lets none happen.
@interface RecordingApp : DesktopApp {
  @public
    std::vector<bool> _terminations;  // whether each was allowed
}
// How many exist.
+ (int)living;
@end

namespace veltrix::test {

// The two stored settings, and every write in order.
class FakeSettings final : public SettingsStore {
  public:
    [[nodiscard]] std::optional<std::string> read(std::string_view key) const override;
    void write(std::string_view key, std::string_view value) override;
    void flush() override {}

    std::map<std::string, std::string, std::less<>> values;
    std::vector<std::string> writes;  // "key=value"
};

class ShellTest : public ::testing::Test {
  protected:
    ShellTest();
    ~ShellTest() override;

    // What the application is made with; a test may change it before the launch.
    std::vector<std::string> arguments{"veltrix"};
    const std::shared_ptr<FakeSettings> settings = std::make_shared<FakeSettings>();
    const ResourceFixture resources;
    ManualClock clock;

    // What the workspace was asked to open.
    OpenedThings opened;

    [[nodiscard]] DesktopEnvironment environment();
    void launch();

    RetainPtr<RecordingApp> app;
    [[nodiscard]] NSWindow* window() const { return [app window]; }
    [[nodiscard]] NSMenu* menu() const { return [[app statusItem] menu]; }
    [[nodiscard]] std::string status() const;
    [[nodiscard]] std::string toolTip() const;

    // From now on every operator script replies with this.
    void scriptsReply(std::string_view json) const;
    // From now on every operator script waits for release() before it replies with this.
    void scriptsHold(std::string_view json) const;
    void release() const;
    // Writes the same steps (see tests/child/Child.cpp) for all four operator scripts.
    void scriptsDo(std::string_view steps) const;

    // Hands over a command word and lets the application work until the action has ended.
    void performToEnd(std::string_view word);
    [[nodiscard]] bool untilIdle() const;

    // An empty folder that may become an installation, and where the fixture's home field points.
    [[nodiscard]] std::string installation() const;
};

[[nodiscard]] std::string textOf(NSTextField* field);

}  // namespace veltrix::test
