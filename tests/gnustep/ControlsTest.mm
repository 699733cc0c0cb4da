// Convenience constructors and accessors.
#import <AppKit/AppKit.h>

#include "common/RetainPtr.h"
#include "support/AppKitDriver.h"

#include <gtest/gtest.h>

using veltrix::adoptNS;
using veltrix::RetainPtr;
using veltrix::test::press;
using veltrix::test::typeInto;

@interface PressCounter : NSObject {
  @public
    int _presses;
}
- (void)press:(id)sender;
@end

@implementation PressCounter
- (void)press:(id)sender {
    ++_presses;
}
@end

namespace {

RetainPtr<NSWindow> windowWith(NSView* view) {
    RetainPtr<NSWindow> window =
        adoptNS([[NSWindow alloc] initWithContentRect:NSMakeRect(0, 0, 300, 100)
                                            styleMask:NSWindowStyleMaskTitled
                                              backing:NSBackingStoreBuffered
                                                defer:NO]);
    [window setReleasedWhenClosed:NO];
    [view setFrame:NSMakeRect(0, 0, 300, 28)];
    [[window contentView] addSubview:view];
    return window;
}

TEST(CheckBoxes, LookDisabledWhenTheyAre) {
    NSButton* const box = [NSButton checkboxWithTitle:@"Agree" target:nil action:nil];
    EXPECT_TRUE((bool)[[box cell] imageDimsWhenDisabled]);
}

TEST(Labels, AreNeitherEditableNorFramed) {
    NSTextField* const label = [NSTextField labelWithString:@"Name"];
    EXPECT_TRUE([[label stringValue] isEqualToString:@"Name"]);
    EXPECT_FALSE((bool)[label isEditable]);
    EXPECT_FALSE((bool)[label isSelectable]);
    EXPECT_FALSE((bool)[label isBezeled]);
    EXPECT_FALSE((bool)[label drawsBackground]);
    EXPECT_FALSE((bool)[label translatesAutoresizingMaskIntoConstraints]);
}

TEST(Labels, AWrappingOneCanBeCopiedFromButNotTabbedInto) {
    NSTextField* const label = [NSTextField wrappingLabelWithString:@"Text"];
    EXPECT_TRUE((bool)[label isSelectable]);
    EXPECT_FALSE((bool)[label isEditable]);
    EXPECT_FALSE((bool)[label canBecomeKeyView]);
    const RetainPtr<NSWindow> window = windowWith(label);
    [window makeFirstResponder:label];
    EXPECT_FALSE([window firstResponder] == label);
}

TEST(Fields, AreEditableAndHoldTheirString) {
    NSTextField* const field = [NSTextField textFieldWithString:@"30"];
    EXPECT_TRUE((bool)[field isEditable]);
    EXPECT_TRUE((bool)[field isBezeled]);
    const RetainPtr<NSWindow> window = windowWith(field);
    ASSERT_TRUE(typeInto(field, @"31"));
    EXPECT_TRUE([[field stringValue] isEqualToString:@"31"]);
}

TEST(Fields, KeepTheirPlaceholderApartFromTheirValue) {
    NSTextField* const field = [NSTextField textFieldWithString:@""];
    [field setPlaceholderString:@"https://example.net"];
    EXPECT_TRUE([[field placeholderString] isEqualToString:@"https://example.net"]);
    EXPECT_EQ([[field stringValue] length], 0U);
}

TEST(Fields, InSingleLineModeScrollInsteadOfWrapping) {
    const RetainPtr<NSTextField> field = adoptNS([[NSTextField alloc] initWithFrame:NSZeroRect]);
    [field setUsesSingleLineMode:YES];
    EXPECT_TRUE((bool)[field usesSingleLineMode]);
    EXPECT_TRUE((bool)[[field cell] isScrollable]);
    EXPECT_EQ([field lineBreakMode], NSLineBreakByClipping);
}

TEST(Fields, HaveNoWidthOfTheirOwnButAHeight) {
    const NSSize size = [[NSTextField textFieldWithString:@"abc"] intrinsicContentSize];
    EXPECT_EQ(size.width, NSViewNoIntrinsicMetric);
    EXPECT_GT(size.height, 0);
}

TEST(Buttons, SendTheirActionWhenPressed) {
    const RetainPtr<PressCounter> counter = adoptNS([[PressCounter alloc] init]);
    NSButton* const button = [NSButton buttonWithTitle:@"Go"
                                                target:counter
                                                action:@selector(press:)];
    const RetainPtr<NSWindow> window = windowWith(button);
    EXPECT_TRUE(press(button));
    EXPECT_EQ(counter.get()->_presses, 1);
    [button setEnabled:NO];
    EXPECT_FALSE(press(button));
}

TEST(Buttons, ACheckBoxGoesOnAndOff) {
    NSButton* const box = [NSButton checkboxWithTitle:@"Trust" target:nil action:nil];
    EXPECT_EQ([box state], (NSInteger)NSControlStateValueOff);
    const RetainPtr<NSWindow> window = windowWith(box);
    EXPECT_TRUE(press(box));
    EXPECT_EQ([box state], (NSInteger)NSControlStateValueOn);
    EXPECT_TRUE(press(box));
    EXPECT_EQ([box state], (NSInteger)NSControlStateValueOff);
}

TEST(Buttons, AreAsHighAsFields) {
    NSButton* const plain = [NSButton buttonWithTitle:@"Save" target:nil action:nil];
    NSButton* const withImage = [NSButton buttonWithTitle:@"Start" target:nil action:nil];
    [withImage setImage:[NSImage imageWithSystemSymbolName:@"play.fill"
                                  accessibilityDescription:@"Start"]];
    [withImage setImagePosition:NSImageLeading];
    const CGFloat field = [[NSTextField textFieldWithString:@""] intrinsicContentSize].height;
    EXPECT_EQ([plain intrinsicContentSize].height, field);
    EXPECT_EQ([withImage intrinsicContentSize].height, field);
    EXPECT_GT([withImage intrinsicContentSize].width, [plain intrinsicContentSize].width);
}

TEST(Symbols, ThoseDrawnHaveASizeAndADescription) {
    for (NSString* name in @[
             @"externaldrive", @"rectangle.grid.2x2", @"film", @"person.2", @"play.fill",
             @"stop.fill"
         ]) {
        NSImage* const image = [NSImage imageWithSystemSymbolName:name
                                         accessibilityDescription:@"What it is"];
        ASSERT_TRUE(image) << [name UTF8String];
        EXPECT_GT([image size].width, 0);
        EXPECT_TRUE([[image accessibilityDescription] isEqualToString:@"What it is"]);
    }
}

TEST(Symbols, AnyOtherIsNil) {
    EXPECT_FALSE([NSImage imageWithSystemSymbolName:@"no.such.symbol"
                           accessibilityDescription:@"Nothing"]);
}

TEST(Identifiers, BelongToOneObjectAndGoWithIt) {
    NSMenuItem* const item = [NSMenuItem separatorItem];
    const RetainPtr<NSView> view = adoptNS([[NSView alloc] initWithFrame:NSZeroRect]);
    EXPECT_FALSE([view identifier]);
    [view setIdentifier:@"home"];
    [item setIdentifier:@"item"];
    EXPECT_TRUE([[view identifier] isEqualToString:@"home"]);
    EXPECT_TRUE([[item identifier] isEqualToString:@"item"]);
    [view setIdentifier:nil];
    EXPECT_FALSE([view identifier]);
}

TEST(Identifiers, AreCopied) {
    const RetainPtr<NSView> view = adoptNS([[NSView alloc] initWithFrame:NSZeroRect]);
    const RetainPtr<NSMutableString> text = adoptNS([[NSMutableString alloc] initWithString:@"a"]);
    [view setIdentifier:text];
    [text appendString:@"b"];
    EXPECT_TRUE([[view identifier] isEqualToString:@"a"]);
}

TEST(Fonts, HeavierThanMediumAreBold) {
    NSString* const regular = [[NSFont systemFontOfSize:13] fontName];
    NSString* const bold = [[NSFont boldSystemFontOfSize:13] fontName];
    const auto nameAt = [](NSFontWeight weight) {
        return [[NSFont systemFontOfSize:22 weight:weight] fontName];
    };
    EXPECT_TRUE([nameAt(NSFontWeightRegular) isEqualToString:regular]);
    EXPECT_TRUE([nameAt(NSFontWeightMedium) isEqualToString:regular]);
    EXPECT_TRUE([nameAt(NSFontWeightSemibold) isEqualToString:bold]);
    EXPECT_EQ([[NSFont systemFontOfSize:22 weight:NSFontWeightSemibold] pointSize], 22);
}

}  // namespace
