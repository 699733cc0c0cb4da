#import <AppKit/AppKit.h>

#include "common/RetainPtr.h"
#include "support/TempFolder.h"

#include <cstdlib>

#include <unistd.h>

#include <gtest/gtest.h>

using veltrix::adoptNS;
using veltrix::RetainPtr;

namespace {

TEST(Application, RemembersItsActivationPolicy) {
    EXPECT_TRUE((bool)[NSApp setActivationPolicy:NSApplicationActivationPolicyAccessory]);
    EXPECT_EQ([NSApp activationPolicy], NSApplicationActivationPolicyAccessory);
}

TEST(Application, AnAccessoryShowsNoMainMenuButKeepsItsKeyEquivalents) {
    const RetainPtr<NSMenu> menu = adoptNS([[NSMenu alloc] initWithTitle:@""]);
    NSMenuItem* const edit = [menu addItemWithTitle:@"Edit" action:nil keyEquivalent:@""];
    const RetainPtr<NSMenu> editMenu = adoptNS([[NSMenu alloc] initWithTitle:@"Edit"]);
    [editMenu addItemWithTitle:@"Copy" action:@selector(copy:) keyEquivalent:@"c"];
    [edit setSubmenu:editMenu];
    [NSApp setMainMenu:menu];
    EXPECT_FALSE((bool)[[menu window] isVisible]);
    EXPECT_TRUE([NSApp mainMenu] == menu.get());
    [NSApp setMainMenu:nil];
}

TEST(Application, HomeIsWhatTheEnvironmentSays) {
    const std::string before = std::getenv("HOME");
    setenv("HOME", "/somewhere/else", 1);
    EXPECT_STREQ([[[[NSFileManager defaultManager] homeDirectoryForCurrentUser] path] UTF8String],
                 "/somewhere/else");
    unsetenv("HOME");
    EXPECT_TRUE([[[[NSFileManager defaultManager] homeDirectoryForCurrentUser] path]
        isEqualToString:NSHomeDirectory()]);
    setenv("HOME", before.c_str(), 1);
}

TEST(Application, TheCurrentApplicationIsThisProcess) {
    EXPECT_EQ([[NSRunningApplication currentApplication] processIdentifier], getpid());
    EXPECT_FALSE((bool)[[NSRunningApplication currentApplication] isTerminated]);
}

TEST(Application, WithoutABundleIdentifierNoOtherInstanceIsKnown) {
    EXPECT_FALSE([[NSBundle mainBundle] bundleIdentifier]);
    EXPECT_EQ([[NSRunningApplication runningApplicationsWithBundleIdentifier:@"example.any"] count],
              0U);
}

// Objects outlive the static objects that AppKit's classes lean on.
TEST(ApplicationDeathTest, TerminatesInGoodOrderWithWindowsAndAStatusItemShown) {
    EXPECT_EXIT(
        {
            NSStatusItem* const item =
                [[NSStatusBar systemStatusBar] statusItemWithLength:NSSquareStatusItemLength];
            [[item button] setToolTip:@"Tip"];
            const RetainPtr<NSWindow> window =
                adoptNS([[NSWindow alloc] initWithContentRect:NSMakeRect(0, 0, 200, 100)
                                                    styleMask:NSWindowStyleMaskTitled
                                                      backing:NSBackingStoreBuffered
                                                        defer:NO]);
            [window setContentView:[NSStackView
                                       stackViewWithViews:@[ [NSTextField labelWithString:@"x"] ]]];
            [window makeKeyAndOrderFront:nil];
            [NSApp performSelector:@selector(terminate:) withObject:nil afterDelay:0];
            [NSApp run];
        },
        ::testing::ExitedWithCode(0), "");
}

}  // namespace
