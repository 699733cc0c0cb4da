// Which constraints are taken and which are refused.
#import <AppKit/AppKit.h>

#include "common/RetainPtr.h"

#include <gtest/gtest.h>

using veltrix::adoptNS;
using veltrix::RetainPtr;

namespace {

RetainPtr<NSView> makeView() {
    RetainPtr<NSView> view = adoptNS([[NSView alloc] initWithFrame:NSMakeRect(0, 0, 100, 50)]);
    [view setTranslatesAutoresizingMaskIntoConstraints:NO];
    return view;
}

bool isRefused(NSLayoutConstraint* constraint) {
    @try {
        [constraint setActive:YES];
        [constraint setActive:NO];
    } @catch (NSException* exception) {
        return [[exception name] isEqualToString:NSInvalidArgumentException];
    }
    return false;
}

struct LayoutRulesTest : ::testing::Test {
    LayoutRulesTest() {
        [outer addSubview:inner];
        [outer addSubview:sibling];
    }

    RetainPtr<NSView> outer = makeView();
    RetainPtr<NSView> inner = makeView();
    RetainPtr<NSView> sibling = makeView();
    RetainPtr<NSView> stranger = makeView();
};

TEST_F(LayoutRulesTest, AnchorsKeepTheirViewAttributeAndConstant) {
    NSLayoutConstraint* const constraint =
        [[inner trailingAnchor] constraintEqualToAnchor:[outer trailingAnchor] constant:-24];
    EXPECT_TRUE([constraint firstItem] == inner.get());
    EXPECT_EQ([constraint firstAttribute], NSLayoutAttributeTrailing);
    EXPECT_TRUE([constraint secondItem] == outer.get());
    EXPECT_EQ([constraint secondAttribute], NSLayoutAttributeTrailing);
    EXPECT_EQ([constraint constant], -24);
    EXPECT_EQ([constraint priority], NSLayoutPriorityRequired);
}

TEST_F(LayoutRulesTest, AConstraintIsActiveFromActivationToDeactivation) {
    NSLayoutConstraint* const constraint = [[inner widthAnchor] constraintEqualToConstant:10];
    EXPECT_FALSE((bool)[constraint isActive]);
    [NSLayoutConstraint activateConstraints:@[ constraint ]];
    EXPECT_TRUE((bool)[constraint isActive]);
    [NSLayoutConstraint deactivateConstraints:@[ constraint ]];
    EXPECT_FALSE((bool)[constraint isActive]);
}

TEST_F(LayoutRulesTest, TakesEdgesAndSizesThatFollowFromAbove) {
    EXPECT_FALSE(isRefused([[inner topAnchor] constraintEqualToAnchor:[outer topAnchor]]));
    EXPECT_FALSE(isRefused([[outer bottomAnchor] constraintEqualToAnchor:[inner bottomAnchor]]));
    EXPECT_FALSE(isRefused([[inner leftAnchor] constraintEqualToAnchor:[outer leadingAnchor]]));
    EXPECT_FALSE(isRefused([[inner widthAnchor] constraintEqualToAnchor:[outer widthAnchor]]));
    EXPECT_FALSE(isRefused(
        [[inner heightAnchor] constraintGreaterThanOrEqualToAnchor:[outer heightAnchor]]));
    EXPECT_FALSE(isRefused([[inner heightAnchor] constraintLessThanOrEqualToConstant:20]));
}

TEST_F(LayoutRulesTest, RefusesEverythingElseLoudly) {
    EXPECT_TRUE(isRefused([[inner topAnchor] constraintEqualToAnchor:[sibling bottomAnchor]]));
    EXPECT_TRUE(isRefused([[inner topAnchor] constraintEqualToAnchor:[outer bottomAnchor]]));
    EXPECT_TRUE(
        isRefused([[inner topAnchor] constraintGreaterThanOrEqualToAnchor:[outer topAnchor]]));
    EXPECT_TRUE(isRefused([[inner widthAnchor] constraintEqualToAnchor:[sibling widthAnchor]]));
    EXPECT_TRUE(isRefused([[inner widthAnchor] constraintEqualToAnchor:[outer heightAnchor]]));
    NSLayoutConstraint* const optional = [[inner widthAnchor] constraintEqualToConstant:10];
    [optional setPriority:NSLayoutPriorityDefaultLow];
    EXPECT_TRUE(isRefused(optional));
}

TEST_F(LayoutRulesTest, RefusesViewsWithoutACommonAncestor) {
    EXPECT_TRUE(isRefused([[inner topAnchor] constraintEqualToAnchor:[stranger topAnchor]]));
    EXPECT_TRUE(isRefused([[stranger widthAnchor] constraintEqualToAnchor:[outer widthAnchor]]));
}

TEST_F(LayoutRulesTest, AConstraintDoesNotKeepItsViewsAliveAndGoesWithThem) {
    @autoreleasepool {
        [[[inner widthAnchor] constraintEqualToAnchor:[outer widthAnchor]] setActive:YES];
    }
    const RetainPtr<NSLayoutConstraint> constraint =
        [[sibling widthAnchor] constraintEqualToAnchor:[outer widthAnchor]];
    [constraint setActive:YES];
    const NSUInteger before = [sibling retainCount];
    [sibling removeFromSuperview];
    EXPECT_EQ([sibling retainCount], before - 1);
    sibling = nullptr;
    EXPECT_FALSE((bool)[constraint isActive]);
}

TEST_F(LayoutRulesTest, AChangedConstantTakesEffect) {
    NSLayoutConstraint* const width = [[inner widthAnchor] constraintEqualToConstant:10];
    [width setActive:YES];
    [outer layoutSubtreeIfNeeded];
    EXPECT_EQ(NSWidth([inner frame]), 10);
    [width setConstant:30];
    [outer layoutSubtreeIfNeeded];
    EXPECT_EQ(NSWidth([inner frame]), 30);
}

}  // namespace
