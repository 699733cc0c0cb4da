// The launch: what is done, in which order, and what exists afterwards.
#include "shell/ShellTest.h"

#include "common/Text.h"
#include "support/AppKitDriver.h"
#include "support/MethodSwap.h"

#include <optional>

#include <unistd.h>

using namespace veltrix;
using namespace veltrix::test;

namespace {

// The steps of a launch that are visible from outside, in order and without repetitions.
std::vector<std::string> steps;

void note(std::string step) {
    if (steps.empty() || steps.back() != step) {
        steps.push_back(std::move(step));
    }
}

using SetPolicy = BOOL (*)(id, SEL, NSApplicationActivationPolicy);
using MakeItem = id (*)(id, SEL, CGFloat);
using SetAutoenables = void (*)(id, SEL, BOOL);
using Center = void (*)(id, SEL);
using Order = void (*)(id, SEL, id);
using Activate = void (*)(id, SEL, BOOL);

SetPolicy setPolicy;
MakeItem makeItem;
SetAutoenables setAutoenables;
Center center;
Order order;
Activate activate;

BOOL noteSetPolicy(id self, SEL command, NSApplicationActivationPolicy policy) {
    note("policy");
    return setPolicy(self, command, policy);
}

id noteMakeItem(id self, SEL command, CGFloat length) {
    note("status item");
    return makeItem(self, command, length);
}

// Nobody but the builder of the status menu calls it.
void noteMenu(id self, SEL command, BOOL autoenables) {
    note("menu");
    setAutoenables(self, command, autoenables);
}

void noteCenter(id self, SEL command) {
    note("window built");
    center(self, command);
}

void noteOrder(id self, SEL command, id sender) {
    note("window in front");
    order(self, command, sender);
}

void noteActivate(id self, SEL command, BOOL ignoringOthers) {
    note(ignoringOthers ? "activated ignoring others" : "activated");
    activate(self, command, ignoringOthers);
}

class LaunchTest : public ShellTest {};

TEST_F(LaunchTest, GoesThroughItsStepsInOrder) {
    const MethodSwap swaps[]{
        {[NSApplication class], @selector(setActivationPolicy:), noteSetPolicy},
        {[NSStatusBar class], @selector(statusItemWithLength:), noteMakeItem},
        {[NSMenu class], @selector(setAutoenablesItems:), noteMenu},
        {[NSWindow class], @selector(center), noteCenter},
        {[NSWindow class], @selector(makeKeyAndOrderFront:), noteOrder},
        {[NSApplication class], @selector(activateIgnoringOtherApps:), noteActivate},
    };
    setPolicy = swaps[0].original<SetPolicy>();
    makeItem = swaps[1].original<MakeItem>();
    setAutoenables = swaps[2].original<SetAutoenables>();
    center = swaps[3].original<Center>();
    order = swaps[4].original<Order>();
    activate = swaps[5].original<Activate>();
    steps.clear();
    launch();
    EXPECT_EQ(steps, (std::vector<std::string>{"policy", "status item", "menu", "window built",
                                               "window in front", "activated ignoring others"}));
}

TEST_F(LaunchTest, MakesAnAccessoryOfTheApplication) {
    [NSApp setActivationPolicy:NSApplicationActivationPolicyRegular];
    launch();
    EXPECT_EQ([NSApp activationPolicy], NSApplicationActivationPolicyAccessory);
}

TEST_F(LaunchTest, MakesASquareStatusItemWithADescribedPictureAndNoTitle) {
    launch();
    NSStatusItem* const item = [app statusItem];
    ASSERT_NE(item, nil);
    EXPECT_EQ([item length], NSSquareStatusItemLength);
    NSButton* const button = [item button];
    ASSERT_NE([button image], nil);
    EXPECT_EQ(toUtf8([[button image] accessibilityDescription]), "Veltrix Home DVR");
    EXPECT_EQ(toUtf8([button title]), "");
    EXPECT_EQ(toUtf8([button accessibilityLabel]), "Veltrix Home DVR");
}

TEST_F(LaunchTest, TheToolTipIsTheProductsNameUntilAReplyHasBeenHandled) {
    launch();
    EXPECT_EQ(toolTip(), "Veltrix Home DVR");
    [app perform:"save"];
    EXPECT_EQ(status(), "Desktop settings saved. Service unchanged.");
    EXPECT_EQ(toolTip(), "Veltrix Home DVR");
}

TEST_F(LaunchTest, ShowsTheSettingsWindowInFront) {
    launch();
    EXPECT_TRUE((bool)[window() isVisible]);
    EXPECT_TRUE(pumpUntil([this] { return (bool)[window() isKeyWindow]; }));
    EXPECT_TRUE(pumpUntil([] { return (bool)[NSApp isActive]; }));
}

TEST_F(LaunchTest, RunsNoActionAndKnowsNothingOfTheService) {
    scriptsDo("touch " + resources.scratch("ran") + "\n");
    launch();
    EXPECT_EQ(status(), "Service status unknown");
    EXPECT_FALSE([app busy]);
    EXPECT_TRUE(clock.pending().empty());
    EXPECT_TRUE(settings->writes.empty());
    EXPECT_NE(access(resources.scratch("ran").c_str(), F_OK), 0);
}

TEST_F(LaunchTest, HasEverythingOfTheShellAfterwards) {
    launch();
    EXPECT_NE(window(), nil);
    EXPECT_NE(menu(), nil);
    EXPECT_EQ([app controls].size(), 18U);
    EXPECT_EQ([app menuActions].size(), 9U);
    for (const auto& control : [app controls]) {
        EXPECT_TRUE((bool)[control isEnabled]) << toUtf8([control identifier]);
    }
    for (const auto& item : [app menuActions]) {
        EXPECT_TRUE((bool)[item isEnabled]) << toUtf8([item title]);
    }
}

TEST_F(LaunchTest, ThePartsOfTheFormExistBeforeTheLaunch) {
    const auto early = adoptNS([[RecordingApp alloc] initWithEnvironment:environment()]);
    EXPECT_EQ([early window], nil);
    EXPECT_EQ([early statusItem], nil);
    EXPECT_TRUE([early controls].empty());
    EXPECT_TRUE([early menuActions].empty());
    for (NSTextField* field : {[early home], [early node], [early storage], [early origin]}) {
        EXPECT_EQ(textOf(field), "");
        EXPECT_TRUE((bool)[field isEditable]);
    }
    EXPECT_EQ(textOf([early retention]), "30");
    EXPECT_TRUE((bool)[[early retention] isEditable]);
    EXPECT_EQ(textOf([early status]), "Service status unknown");
    EXPECT_FALSE((bool)[[early status] isEditable]);
}

TEST_F(LaunchTest, IsGoneWithoutATraceWhenNobodyOwnsItAnyMore) {
    const int before = [RecordingApp living];
    @autoreleasepool {
        const auto other = adoptNS([[RecordingApp alloc] initWithEnvironment:environment()]);
        [other applicationDidFinishLaunching:[NSNotification notificationWithName:@"launched"
                                                                           object:NSApp]];
        [[NSStatusBar systemStatusBar] removeStatusItem:[other statusItem]];
        [[other window] orderOut:nil];
        EXPECT_EQ([RecordingApp living], before + 1);
    }
    EXPECT_TRUE(pumpUntil([before] { return [RecordingApp living] == before; }));
}

}  // namespace

// --- Another copy ---------------------------------------------------------------------------

// Another process of the program, or this one.
@interface FakeRunningApplication : NSObject {
  @public
    pid_t _pid;
    std::optional<NSApplicationActivationOptions> _activated;
}
- (pid_t)processIdentifier;
- (BOOL)activateWithOptions:(NSApplicationActivationOptions)options;
@end

@implementation FakeRunningApplication

- (pid_t)processIdentifier {
    return _pid;
}

- (BOOL)activateWithOptions:(NSApplicationActivationOptions)options {
    _activated = options;
    return YES;
}

@end

namespace {

RetainPtr<FakeRunningApplication> process(pid_t pid) {
    RetainPtr<FakeRunningApplication> made = adoptNS([[FakeRunningApplication alloc] init]);
    made.get()->_pid = pid;
    return made;
}

RetainPtr<NSArray> running;
std::string askedFor;

id programIdentifier(id, SEL) {
    return @"example.veltrix.test";
}

id runningApplications(id, SEL, NSString* identifier) {
    askedFor = toUtf8(identifier);
    return running;
}

class InstanceTest : public ShellTest {
  protected:
    ~InstanceTest() override { running = nullptr; }

    const MethodSwap identifier_ {
        [NSBundle class], @selector(bundleIdentifier), programIdentifier
    };
    const MethodSwap running_ {
        object_getClass([NSRunningApplication class]),
            @selector(runningApplicationsWithBundleIdentifier:), runningApplications
    };
    const RetainPtr<FakeRunningApplication> own = process(getpid());
    const RetainPtr<FakeRunningApplication> first = process(getpid() + 1);
    const RetainPtr<FakeRunningApplication> second = process(getpid() + 2);
};

TEST_F(InstanceTest, ASecondCopyBringsTheFirstForwardAndLeavesHavingBuiltNothing) {
    running = @[ own.get(), first.get(), second.get() ];
    launch();
    EXPECT_EQ(askedFor, "example.veltrix.test");
    EXPECT_EQ(first.get()->_activated, NSApplicationActivateIgnoringOtherApps);
    EXPECT_FALSE(own.get()->_activated);
    EXPECT_FALSE(second.get()->_activated);
    EXPECT_EQ(app.get()->_terminations, std::vector<bool>{true});
    EXPECT_EQ([app statusItem], nil);
    EXPECT_EQ([app window], nil);
    EXPECT_TRUE([app menuActions].empty());
}

TEST_F(InstanceTest, TheOnlyCopyLaunches) {
    running = @[ own.get() ];
    launch();
    EXPECT_FALSE(own.get()->_activated);
    EXPECT_TRUE(app.get()->_terminations.empty());
    EXPECT_NE([app statusItem], nil);
    EXPECT_TRUE((bool)[window() isVisible]);
}

}  // namespace
