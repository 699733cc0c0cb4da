#include "shell/ShellTest.h"

#include "common/Dispatch.h"
#include "common/Pipe.h"
#include "common/Text.h"
#include "support/AppKitDriver.h"

#include <fstream>

namespace {

int livingApps = 0;

}  // namespace

@implementation RecordingApp

+ (int)living {
    return livingApps;
}

- (instancetype)initWithEnvironment:(veltrix::DesktopEnvironment)environment {
    self = [super initWithEnvironment:std::move(environment)];
    ++livingApps;
    return self;
}

- (void)dealloc {
    --livingApps;
    [super dealloc];
}

- (NSApplicationTerminateReply)applicationShouldTerminate:(NSApplication*)application {
    _terminations.push_back([super applicationShouldTerminate:application] == NSTerminateNow);
    return NSTerminateCancel;
}

@end

namespace veltrix::test {
namespace {

// What the program's entry does once.
class ProcessEntry final : public ::testing::Environment {
    void SetUp() override {
        ignoreBrokenPipes();
        attachMainQueueToRunLoop();
    }
};

const ::testing::Environment* const processEntry =
    ::testing::AddGlobalTestEnvironment(new ProcessEntry);

}  // namespace

std::optional<std::string> FakeSettings::read(std::string_view key) const {
    const auto found = values.find(key);
    return found == values.end() ? std::nullopt : std::optional(found->second);
}

void FakeSettings::write(std::string_view key, std::string_view value) {
    values.insert_or_assign(std::string(key), std::string(value));
    writes.push_back(std::string(key) + "=" + std::string(value));
}

ShellTest::ShellTest() {
    settings->values.emplace(kInstallationHomeKey, installation());
    scriptsReply(R"({"ok":true,"code":"ready"})");
}

ShellTest::~ShellTest() {
    if (!app) {
        return;
    }
    release();
    EXPECT_TRUE(untilIdle()) << "an action is still under way at the end of the test";
    [NSApp setDelegate:nil];
    [window() orderOut:nil];
    if ([app statusItem] != nil) {
        [[NSStatusBar systemStatusBar] removeStatusItem:[app statusItem]];
    }
}

DesktopEnvironment ShellTest::environment() {
    const std::string path = "PATH=/usr/bin:/bin";
    return {settings, resources.scratch("user"), arguments,
            OperatorServices{clock, resources.asFunction(),
                             [path] { return std::vector<std::string>{path}; }}};
}

void ShellTest::launch() {
    app = adoptNS([[RecordingApp alloc] initWithEnvironment:environment()]);
    [NSApp setDelegate:app];
    [app applicationDidFinishLaunching:
             [NSNotification notificationWithName:NSApplicationDidFinishLaunchingNotification
                                           object:NSApp]];
}

std::string ShellTest::status() const {
    return textOf([app status]);
}

std::string ShellTest::toolTip() const {
    return toUtf8([[[app statusItem] button] toolTip]);
}

void ShellTest::scriptsDo(std::string_view steps) const {
    for (const char* const name : {"controller", "service", "install", "update"}) {
        static_cast<void>(
            resources.script("desktop/" + std::string(name) + ".mjs", std::string(steps)));
    }
}

void ShellTest::scriptsReply(std::string_view json) const {
    scriptsDo("print " + std::string(json) + "\n");
}

void ShellTest::scriptsHold(std::string_view json) const {
    scriptsDo("await " + resources.scratch("released") + "\nprint " + std::string(json) + "\n");
}

void ShellTest::release() const {
    std::ofstream(resources.scratch("released"));
}

void ShellTest::performToEnd(std::string_view word) {
    [app perform:word];
    ASSERT_TRUE(untilIdle()) << word;
}

bool ShellTest::untilIdle() const {
    return pumpUntil([this] { return ![app busy]; });
}

std::string ShellTest::installation() const {
    return resources.scratch("DVR");
}

std::string textOf(NSTextField* field) {
    return toUtf8([field stringValue]);
}

}  // namespace veltrix::test
