// The look as far as a test can say anything about it.
#import <AppKit/AppKit.h>

#include "common/RetainPtr.h"
#include "support/AppKitDriver.h"

#include <gtest/gtest.h>

using veltrix::adoptNS;
using veltrix::RetainPtr;

namespace {

TEST(Look, WindowsAreLightAndTextIsDark) {
    NSColor* const window =
        [[NSColor windowBackgroundColor] colorUsingColorSpaceName:NSCalibratedRGBColorSpace];
    NSColor* const text =
        [[NSColor controlTextColor] colorUsingColorSpaceName:NSCalibratedRGBColorSpace];
    EXPECT_GT([window brightnessComponent], 0.9);
    EXPECT_LT([text brightnessComponent], 0.2);
}

TEST(Look, SurvivesAChangeOfDefaults) {
    NSColor* const before = [NSColor windowBackgroundColor];
    [[NSUserDefaults standardUserDefaults] setObject:@"value" forKey:@"someKey"];
    [[NSUserDefaults standardUserDefaults] synchronize];
    EXPECT_TRUE([[NSColor windowBackgroundColor] isEqual:before]);
    [[NSUserDefaults standardUserDefaults] removeObjectForKey:@"someKey"];
}

TEST(Look, DefaultButtonsBearNoReturnArrow) {
    NSButton* const button = [NSButton buttonWithTitle:@"OK" target:nil action:nil];
    [button setKeyEquivalent:@"\r"];
    EXPECT_FALSE([button image]);
}

// What is found by name is not read from a file of the library's.
TEST(Look, PicturesOfMenusAndScrollersAreSupplied) {
    for (NSString* name in @[
             @"NSMenuArrow", @"NSMenuCheckmark", @"NSMenuMixedState", @"common_ArrowUp",
             @"common_ArrowRightH", @"common_Dimple", @"common_Close"
         ]) {
        NSArray* const representations = [[NSImage imageNamed:name] representations];
        EXPECT_TRUE([representations count] == 1 &&
                    [NSStringFromClass([[representations objectAtIndex:0] class])
                        isEqualToString:@"VeltrixPaintedRep"])
            << [name UTF8String];
    }
}

TEST(Look, AnItemThatChangesWhileItsMenuIsHiddenIsThereWhenItIsShown) {
    const RetainPtr<NSMenu> menu = adoptNS([[NSMenu alloc] initWithTitle:@""]);
    const RetainPtr<NSMenuView> view = adoptNS([[NSMenuView alloc] initWithFrame:NSZeroRect]);
    [view setMenu:menu];
    [menu addItemWithTitle:@"Short" action:nullptr keyEquivalent:@""];
    [view sizeToFit];
    const CGFloat before = NSWidth([view frame]);
    [view setNeedsDisplay:NO];
    [[menu itemAtIndex:0] setTitle:@"Something much longer"];
    EXPECT_TRUE((bool)[view needsDisplay]);
    EXPECT_GT(NSWidth([view rectOfItemAtIndex:0]), before);
}

TEST(Look, ShowingAWindowWritesNothingToStandardError) {
    ::testing::internal::CaptureStderr();
    const RetainPtr<NSWindow> window = adoptNS([[NSWindow alloc]
        initWithContentRect:NSMakeRect(0, 0, 300, 200)
                  styleMask:NSWindowStyleMaskTitled | NSWindowStyleMaskClosable |
                            NSWindowStyleMaskMiniaturizable | NSWindowStyleMaskResizable
                    backing:NSBackingStoreBuffered
                      defer:NO]);
    [window setReleasedWhenClosed:NO];
    NSStackView* const column = [NSStackView stackViewWithViews:@[
        [NSTextField labelWithString:@"Label"], [NSTextField textFieldWithString:@"Field"],
        [NSButton buttonWithTitle:@"Button" target:nil action:nil],
        [NSButton checkboxWithTitle:@"Box" target:nil action:nil]
    ]];
    [column setOrientation:NSUserInterfaceLayoutOrientationVertical];
    [window setContentView:column];
    [window makeKeyAndOrderFront:nil];
    [window display];
    EXPECT_TRUE(veltrix::test::pumpUntil([&] { return (bool)[window isKeyWindow]; }));
    [window orderOut:nil];
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

TEST(Look, AMinimumContentSizeIsTheLeast) {
    const RetainPtr<NSWindow> window = adoptNS([[NSWindow alloc]
        initWithContentRect:NSMakeRect(0, 0, 300, 200)
                  styleMask:NSWindowStyleMaskTitled | NSWindowStyleMaskResizable
                    backing:NSBackingStoreBuffered
                      defer:NO]);
    [window setContentMinSize:NSMakeSize(250, 150)];
    EXPECT_TRUE(NSEqualSizes([window contentMinSize], NSMakeSize(250, 150)));
}

}  // namespace
