#import <AppKit/AppKit.h>

#include "common/RetainPtr.h"

#include <gtest/gtest.h>

using veltrix::adoptNS;
using veltrix::RetainPtr;

namespace {

NSView* box(CGFloat width, CGFloat height) {
    RetainPtr<NSView> view = adoptNS([[NSView alloc] initWithFrame:NSZeroRect]);
    [[[view widthAnchor] constraintEqualToConstant:width] setActive:YES];
    [[[view heightAnchor] constraintEqualToConstant:height] setActive:YES];
    return view.autorelease();
}

struct StackViewTest : ::testing::Test {
    void layOutAt(CGFloat width, CGFloat height) {
        [stack setFrame:NSMakeRect(0, 0, width, height)];
        [stack layoutSubtreeIfNeeded];
    }

    RetainPtr<NSStackView> stack = adoptNS([[NSStackView alloc] initWithFrame:NSZeroRect]);
};

TEST_F(StackViewTest, ARowStandsSideBySideWithItsSpacing) {
    NSView* const a = box(30, 10);
    NSView* const b = box(40, 20);
    [stack setSpacing:12];
    [stack addArrangedSubview:a];
    [stack addArrangedSubview:b];
    EXPECT_TRUE(NSEqualSizes([stack fittingSize], NSMakeSize(82, 20)));
    layOutAt(82, 20);
    EXPECT_TRUE(NSEqualRects([a frame], NSMakeRect(0, 5, 30, 10)));
    EXPECT_TRUE(NSEqualRects([b frame], NSMakeRect(42, 0, 40, 20)));
}

TEST_F(StackViewTest, AColumnRunsFromTheTop) {
    NSView* const a = box(30, 10);
    NSView* const b = box(40, 20);
    [stack setOrientation:NSUserInterfaceLayoutOrientationVertical];
    [stack setAlignment:NSLayoutAttributeLeading];
    [stack setEdgeInsets:NSEdgeInsetsMake(1, 2, 3, 4)];
    [stack addArrangedSubview:a];
    [stack addArrangedSubview:b];
    EXPECT_TRUE(NSEqualSizes([stack fittingSize], NSMakeSize(46, 42)));
    layOutAt(100, 100);
    EXPECT_TRUE(NSEqualRects([a frame], NSMakeRect(2, 1, 30, 10)));
    EXPECT_TRUE(NSEqualRects([b frame], NSMakeRect(2, 19, 40, 20)));
}

TEST_F(StackViewTest, IsCentredUnlessAlignedOtherwise) {
    EXPECT_EQ([stack alignment], NSLayoutAttributeCenterY);
    [stack setOrientation:NSUserInterfaceLayoutOrientationVertical];
    EXPECT_EQ([stack alignment], NSLayoutAttributeCenterX);
    [stack setAlignment:NSLayoutAttributeTrailing];
    NSView* const view = box(30, 10);
    [stack addArrangedSubview:view];
    layOutAt(100, 10);
    EXPECT_EQ(NSMaxX([view frame]), 100);
}

TEST_F(StackViewTest, AFieldTakesTheSpareWidthBesideAButton) {
    NSTextField* const field = [NSTextField textFieldWithString:@""];
    NSButton* const button = [NSButton buttonWithTitle:@"Choose..." target:nil action:nil];
    const CGFloat natural = [button intrinsicContentSize].width;
    [stack addArrangedSubview:field];
    [stack addArrangedSubview:button];
    [field setContentHuggingPriority:250 forOrientation:NSLayoutConstraintOrientationHorizontal];
    layOutAt(400, 28);
    EXPECT_EQ(NSWidth([button frame]), natural);
    EXPECT_EQ(NSMaxX([button frame]), 400);
    EXPECT_EQ(NSWidth([field frame]), 400 - natural - 8);
    EXPECT_EQ(NSHeight([field frame]), NSHeight([button frame]));
    EXPECT_EQ(NSMinY([field frame]), NSMinY([button frame]));
}

TEST_F(StackViewTest, ButtonsKeepTheirWidthInARowThatIsWider) {
    NSButton* const button = [NSButton buttonWithTitle:@"Save" target:nil action:nil];
    [stack addArrangedSubview:button];
    layOutAt(400, 28);
    EXPECT_EQ(NSWidth([button frame]), [button intrinsicContentSize].width);
    [stack setDistribution:NSStackViewDistributionFill];
    layOutAt(401, 28);
    EXPECT_EQ(NSWidth([button frame]), 401);
}

TEST_F(StackViewTest, AShortageIsTakenFromTheLeastResistant) {
    NSTextField* const weak = [NSTextField labelWithString:@"A label of some length"];
    NSTextField* const strong = [NSTextField labelWithString:@"Another"];
    [weak setContentCompressionResistancePriority:NSLayoutPriorityDefaultLow
                                   forOrientation:NSLayoutConstraintOrientationHorizontal];
    [stack addArrangedSubview:weak];
    [stack addArrangedSubview:strong];
    const CGFloat natural = [strong intrinsicContentSize].width;
    layOutAt(natural + 8 + 10, 20);
    EXPECT_EQ(NSWidth([strong frame]), natural);
    EXPECT_EQ(NSWidth([weak frame]), 10);
}

TEST_F(StackViewTest, HiddenViewsTakeNoPart) {
    NSView* const a = box(30, 10);
    NSView* const b = box(40, 10);
    [stack addArrangedSubview:a];
    [stack addArrangedSubview:b];
    [a setHidden:YES];
    EXPECT_EQ([stack fittingSize].width, 40);
    layOutAt(100, 10);
    EXPECT_EQ(NSMinX([b frame]), 0);
}

TEST_F(StackViewTest, CustomSpacingHoldsAfterOneView) {
    NSView* const a = box(10, 10);
    NSView* const b = box(10, 10);
    [stack addArrangedSubview:a];
    [stack addArrangedSubview:b];
    [stack addArrangedSubview:box(10, 10)];
    [stack setCustomSpacing:30 afterView:a];
    EXPECT_EQ([stack fittingSize].width, 10 + 30 + 10 + 8 + 10);
}

TEST_F(StackViewTest, InsertsRemovesAndForgetsSubviewsThatAreTakenAway) {
    NSView* const a = box(10, 10);
    NSView* const b = box(10, 10);
    [stack addArrangedSubview:a];
    [stack insertArrangedSubview:b atIndex:0];
    EXPECT_TRUE([[stack arrangedSubviews] isEqualToArray:(@[ b, a ])]);
    [stack removeArrangedSubview:b];
    EXPECT_TRUE([[stack arrangedSubviews] isEqualToArray:@[ a ]]);
    EXPECT_TRUE([b superview] == stack.get());
    [a removeFromSuperview];
    EXPECT_EQ([[stack arrangedSubviews] count], 0U);
}

TEST_F(StackViewTest, RefusesBaselines) {
    bool refused = false;
    @try {
        [stack setAlignment:NSLayoutAttributeFirstBaseline];
    } @catch (NSException* exception) {
        refused = [[exception name] isEqualToString:NSInvalidArgumentException];
    }
    EXPECT_TRUE(refused);
}

TEST_F(StackViewTest, MayBeReleasedWithALayoutStillDue) {
    [stack addArrangedSubview:box(10, 10)];
    EXPECT_TRUE((bool)[stack needsLayout]);
    stack = nullptr;
    [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode beforeDate:[NSDate date]];
}

}  // namespace
