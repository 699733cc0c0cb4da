// The status item, its button and its menu, driven by the keyboard and by the pointer.
#import <AppKit/AppKit.h>

#include "common/RetainPtr.h"
#include "support/AppKitDriver.h"
#include "support/gnustep/Pointer.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

using veltrix::adoptNS;
using veltrix::RetainPtr;
using veltrix::test::ModalResponder;
using veltrix::test::movePointer;
using veltrix::test::pressKey;

@interface MenuTarget : NSObject {
  @public
    std::vector<std::string> _chosen;
    bool _menuWasGone;
}
- (void)choose:(NSMenuItem*)item;
@end

@implementation MenuTarget
- (void)choose:(NSMenuItem*)item {
    _chosen.emplace_back([[item title] UTF8String]);
    _menuWasGone = true;
    for (NSWindow* window in [NSApp windows])
        if ([window level] == NSPopUpMenuWindowLevel && [window isVisible])
            _menuWasGone = false;
}
@end

namespace {

// What a person does while the menu is open, step by step: the tracking loop has the main thread.
struct Step {
    std::function<void()> act;
};

struct StatusBarTest : ::testing::Test {
    StatusBarTest() {
        [menu setAutoenablesItems:NO];
        for (NSString* title in @[ @"First", @"Second", @"Third" ]) {
            const RetainPtr<NSMenuItem> added =
                adoptNS([[NSMenuItem alloc] initWithTitle:title
                                                   action:@selector(choose:)
                                            keyEquivalent:@""]);
            [added setTarget:target];
            [menu addItem:added];
        }
        [item setMenu:menu];
        [[item button] setImage:[NSImage imageWithSystemSymbolName:@"externaldrive"
                                          accessibilityDescription:@"Recorder"]];
    }
    ~StatusBarTest() override {
        [[NSStatusBar systemStatusBar] removeStatusItem:item];
        movePointer(10, 900);
    }

    // From the top left of the screen, as the pointer counts.
    NSPoint onScreen(NSRect rect, NSWindow* window) {
        const NSPoint base = [window convertBaseToScreen:NSMakePoint(NSMidX(rect), NSMidY(rect))];
        return NSMakePoint(base.x, NSHeight([[NSScreen mainScreen] frame]) - base.y);
    }

    void pointAtButton() {
        NSView* const button = [item button];
        const NSPoint point =
            onScreen([button convertRect:[button bounds] toView:nil], [button window]);
        movePointer((int)point.x, (int)point.y);
    }

    void pointAtItem(NSInteger index) {
        for (NSWindow* window in [NSApp windows]) {
            NSView* const view =
                veltrix::test::findView([window contentView], [](NSView* candidate) {
                    return (bool)[candidate isKindOfClass:[NSMenuView class]];
                });
            if (![window isVisible] || !view)
                continue;
            const NSRect rect = [(NSMenuView*)view rectOfItemAtIndex:index];
            const NSPoint point = onScreen([view convertRect:rect toView:nil], window);
            movePointer((int)point.x, (int)point.y);
        }
    }

    static void postMouse(NSEventType type) {
        [NSApp postEvent:[NSEvent mouseEventWithType:type
                                            location:NSZeroPoint
                                       modifierFlags:0
                                           timestamp:0
                                        windowNumber:0
                                             context:nil
                                         eventNumber:0
                                          clickCount:1
                                            pressure:1]
                 atStart:NO];
    }

    const std::vector<std::string>& chosen() const { return target.get()->_chosen; }

    RetainPtr<MenuTarget> target = adoptNS([[MenuTarget alloc] init]);
    RetainPtr<NSMenu> menu = adoptNS([[NSMenu alloc] initWithTitle:@""]);
    RetainPtr<NSStatusItem> item =
        [[NSStatusBar systemStatusBar] statusItemWithLength:NSSquareStatusItemLength];
};

}  // namespace

// Runs each step in the tracking loop's own run loop mode, one after the other.
@interface TrackingSteps : NSObject {
  @public
    std::vector<Step> _steps;
    std::size_t _next;
}
- (void)start;
@end

@implementation TrackingSteps
- (void)start {
    NSTimer* const timer = [NSTimer timerWithTimeInterval:0.02
                                                   target:self
                                                 selector:@selector(step:)
                                                 userInfo:nil
                                                  repeats:YES];
    [[NSRunLoop currentRunLoop] addTimer:timer forMode:NSEventTrackingRunLoopMode];
}
- (void)step:(NSTimer*)timer {
    if (_next < _steps.size())
        _steps[_next++].act();
    else
        [timer invalidate];
}
@end

namespace {

void whileTracking(std::vector<Step> steps) {
    const RetainPtr<TrackingSteps> run = adoptNS([[TrackingSteps alloc] init]);
    run.get()->_steps = std::move(steps);
    [run start];
}

TEST_F(StatusBarTest, TheButtonStandsAtTheTopRightAndIsVisible) {
    NSWindow* const strip = [[item button] window];
    ASSERT_TRUE(strip);
    EXPECT_TRUE((bool)[strip isVisible]);
    const NSRect screen = [[NSScreen mainScreen] frame];
    EXPECT_GT(NSMidX([strip frame]), NSWidth(screen) * 0.9);
    EXPECT_GT(NSMidY([strip frame]), NSHeight(screen) * 0.9);
    EXPECT_EQ(NSWidth([[item button] frame]), NSHeight([[item button] frame]));
}

TEST_F(StatusBarTest, ItemsStandSideBySideAndGoWhenRemoved) {
    const RetainPtr<NSStatusItem> second =
        [[NSStatusBar systemStatusBar] statusItemWithLength:NSVariableStatusItemLength];
    [[second button] setTitle:@"Text"];
    [second setLength:NSVariableStatusItemLength];
    EXPECT_LT(NSMaxX([[second button] frame]), NSMaxX([[item button] frame]));
    EXPECT_GT(NSWidth([[second button] frame]), NSWidth([[item button] frame]));
    [[NSStatusBar systemStatusBar] removeStatusItem:second];
    EXPECT_FALSE([second button]);
    EXPECT_EQ(NSMinX([[item button] frame]), 0);
}

TEST_F(StatusBarTest, KeepsMenuAndToolTip) {
    [[item button] setToolTip:@"Running"];
    EXPECT_TRUE([[[item button] toolTip] isEqualToString:@"Running"]);
    [[item button] setToolTip:@"Stopped"];
    EXPECT_TRUE([[[item button] toolTip] isEqualToString:@"Stopped"]);
    EXPECT_TRUE([item menu] == menu.get());
}

TEST_F(StatusBarTest, ArrowKeysAndReturnChoose) {
    unichar down = NSDownArrowFunctionKey;
    NSString* const arrow = [NSString stringWithCharacters:&down length:1];
    pressKey(nil, arrow);
    pressKey(nil, arrow);
    pressKey(nil, @"\r");
    [[item button] performClick:nil];
    EXPECT_EQ(chosen(), std::vector<std::string>{"Second"});
    EXPECT_TRUE(target.get()->_menuWasGone);
}

TEST_F(StatusBarTest, EscapeChoosesNothing) {
    pressKey(nil, @"\033");
    [[item button] performClick:nil];
    EXPECT_TRUE(chosen().empty());
}

TEST_F(StatusBarTest, KeysPassDisabledItems) {
    [[menu itemAtIndex:0] setEnabled:NO];
    unichar down = NSDownArrowFunctionKey;
    pressKey(nil, [NSString stringWithCharacters:&down length:1]);
    pressKey(nil, @"\r");
    [[item button] performClick:nil];
    EXPECT_EQ(chosen(), std::vector<std::string>{"Second"});
}

TEST_F(StatusBarTest, AClickOpensAndAnotherOnAnItemChooses) {
    pointAtButton();
    whileTracking({
        {[] { postMouse(NSEventTypeLeftMouseUp); }},
        {[this] { pointAtItem(2); }},
        {[] { postMouse(NSEventTypeLeftMouseDown); }},
        {[] { postMouse(NSEventTypeLeftMouseUp); }},
    });
    [[item button] performClick:nil];
    EXPECT_EQ(chosen(), std::vector<std::string>{"Third"});
}

TEST_F(StatusBarTest, PressDragAndReleaseChooses) {
    pointAtButton();
    whileTracking({
        {[this] { pointAtItem(1); }},
        {[] { postMouse(NSEventTypeLeftMouseDragged); }},
        {[] { postMouse(NSEventTypeLeftMouseUp); }},
    });
    [[item button] performClick:nil];
    EXPECT_EQ(chosen(), std::vector<std::string>{"Second"});
}

TEST_F(StatusBarTest, AReleaseOnADisabledItemKeepsTheMenuOpen) {
    [[menu itemAtIndex:0] setEnabled:NO];
    pointAtButton();
    whileTracking({
        {[this] { pointAtItem(0); }},
        {[] { postMouse(NSEventTypeLeftMouseUp); }},
        {[this] { pointAtItem(1); }},
        {[] { postMouse(NSEventTypeLeftMouseUp); }},
    });
    [[item button] performClick:nil];
    EXPECT_EQ(chosen(), std::vector<std::string>{"Second"});
}

TEST_F(StatusBarTest, AClickElsewhereDismisses) {
    pointAtButton();
    whileTracking({
        {[] { postMouse(NSEventTypeLeftMouseUp); }},
        {[] { movePointer(20, 800); }},
        {[] { postMouse(NSEventTypeLeftMouseDown); }},
    });
    [[item button] performClick:nil];
    EXPECT_TRUE(chosen().empty());
}

TEST_F(StatusBarTest, OpensWhileAnAlertIsUp) {
    const RetainPtr<NSAlert> alert = adoptNS([[NSAlert alloc] init]);
    const ModalResponder responder([this](NSWindow*) {
        unichar down = NSDownArrowFunctionKey;
        pressKey(nil, [NSString stringWithCharacters:&down length:1]);
        pressKey(nil, @"\r");
        [[item button] performClick:nil];
        [NSApp stopModalWithCode:1];
    });
    EXPECT_EQ([alert runModal], 1);
    EXPECT_EQ(chosen(), std::vector<std::string>{"First"});
}

TEST_F(StatusBarTest, AnEmptyMenuDoesNotOpen) {
    [item setMenu:adoptNS([[NSMenu alloc] initWithTitle:@""]).get()];
    [[item button] performClick:nil];
    EXPECT_TRUE(chosen().empty());
}

TEST_F(StatusBarTest, WithoutAMenuTheButtonSendsItsAction) {
    [item setMenu:nil];
    [[item button] setTitle:@"Button"];
    [[item button] setTarget:target];
    [[item button] setAction:@selector(choose:)];
    [[item button] performClick:nil];
    EXPECT_EQ(chosen(), std::vector<std::string>{"Button"});
}

}  // namespace
