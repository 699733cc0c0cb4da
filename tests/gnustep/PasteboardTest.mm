// What comes to the pasteboard and what does not.
#import <AppKit/AppKit.h>

#include "common/RetainPtr.h"
#include "support/AppKitDriver.h"

#include <gtest/gtest.h>

using veltrix::adoptNS;
using veltrix::RetainPtr;

namespace {

struct PasteboardTest : ::testing::Test {
    PasteboardTest() {
        [window setReleasedWhenClosed:NO];
        [board declareTypes:@[ NSStringPboardType ] owner:nil];
        [board setString:@"before" forType:NSStringPboardType];
    }

    // As a person would who enters a field: its text is selected then.
    NSText* enter(NSTextField* field, NSString* text) {
        [field setFrame:NSMakeRect(0, 0, 200, 28)];
        [field setStringValue:text];
        [[window contentView] addSubview:field];
        EXPECT_TRUE((bool)[window makeFirstResponder:field]);
        return [field currentEditor];
    }

    [[nodiscard]] const char* copied() const {
        return [[board stringForType:NSStringPboardType] UTF8String];
    }

    NSPasteboard* const board = [NSPasteboard generalPasteboard];
    RetainPtr<NSWindow> window =
        adoptNS([[NSWindow alloc] initWithContentRect:NSMakeRect(0, 0, 300, 100)
                                            styleMask:NSWindowStyleMaskTitled
                                              backing:NSBackingStoreBuffered
                                                defer:NO]);
};

TEST_F(PasteboardTest, CopyingTakesTheSelectedText) {
    NSText* const editor = enter([NSTextField textFieldWithString:@""], @"/some/path");
    [editor selectAll:nil];
    [editor copy:nil];
    EXPECT_STREQ(copied(), "/some/path");
}

TEST_F(PasteboardTest, PastingPutsItIntoAField) {
    NSTextField* const field = [NSTextField textFieldWithString:@""];
    NSText* const editor = enter(field, @"old");
    [editor selectAll:nil];
    [editor paste:nil];
    [window makeFirstResponder:nil];
    EXPECT_STREQ([[field stringValue] UTF8String], "before");
}

TEST_F(PasteboardTest, SelectingAloneTouchesNoPasteboard) {
    NSPasteboard* const selection = [NSPasteboard pasteboardWithName:@"Selection"];
    [selection declareTypes:@[ NSStringPboardType ] owner:nil];
    [selection setString:@"untouched" forType:NSStringPboardType];
    [enter([NSTextField textFieldWithString:@""], @"/some/path") selectAll:nil];
    EXPECT_STREQ([[selection stringForType:NSStringPboardType] UTF8String], "untouched");
    EXPECT_STREQ(copied(), "before");
}

TEST_F(PasteboardTest, APasswordCannotBeCopied) {
    const RetainPtr<NSSecureTextField> field =
        adoptNS([[NSSecureTextField alloc] initWithFrame:NSZeroRect]);
    NSText* const editor = enter(field, @"correct horse battery");
    [editor selectAll:nil];
    [editor copy:nil];
    EXPECT_STREQ(copied(), "before");
}

}  // namespace
