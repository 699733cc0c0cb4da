// Where views end up.
#import <AppKit/AppKit.h>

#include "common/RetainPtr.h"
#include "support/AppKitDriver.h"

#include <gtest/gtest.h>

using veltrix::adoptNS;
using veltrix::RetainPtr;
using veltrix::test::pumpUntil;

@interface FlippedView : NSView
@end

static int flippedViews = 0;

@implementation FlippedView
- (instancetype)initWithFrame:(NSRect)frame {
    ++flippedViews;
    return [super initWithFrame:frame];
}
- (void)dealloc {
    --flippedViews;
    [super dealloc];
}
- (BOOL)isFlipped {
    return YES;
}
@end

// Counts how often it is asked for its size.
@interface AskedView : NSView {
    NSSize _wanted;
    int _asked;
}
- (void)want:(NSSize)size;
- (int)asked;
@end

@implementation AskedView
- (void)want:(NSSize)size {
    _wanted = size;
    [self invalidateIntrinsicContentSize];
}
- (int)asked {
    return _asked;
}
- (NSSize)intrinsicContentSize {
    ++_asked;
    return _wanted;
}
@end

namespace {

// A form in a scroll view in a window, as long windows of settings are made.
struct Form {
    Form() {
        [window setReleasedWhenClosed:NO];
        [window setContentView:scroll];
        [scroll setHasVerticalScroller:YES];
        [scroll setAutohidesScrollers:YES];
        [document setTranslatesAutoresizingMaskIntoConstraints:NO];
        [scroll setDocumentView:document];
        [form setOrientation:NSUserInterfaceLayoutOrientationVertical];
        [form setAlignment:NSLayoutAttributeLeading];
        [form setTranslatesAutoresizingMaskIntoConstraints:NO];
        [document addSubview:form];
        NSClipView* const clip = [scroll contentView];
        [NSLayoutConstraint activateConstraints:@[
            [[document widthAnchor] constraintEqualToAnchor:[clip widthAnchor]],
            [[document heightAnchor] constraintGreaterThanOrEqualToAnchor:[clip heightAnchor]],
            [[form leadingAnchor] constraintEqualToAnchor:[document leadingAnchor] constant:20],
            [[form trailingAnchor] constraintEqualToAnchor:[document trailingAnchor] constant:-20],
            [[form topAnchor] constraintEqualToAnchor:[document topAnchor] constant:20],
            [[form bottomAnchor] constraintEqualToAnchor:[document bottomAnchor] constant:-20],
        ]];
    }

    NSTextField* addFullWidth(NSTextField* view) {
        [form addArrangedSubview:view];
        [[[view widthAnchor] constraintEqualToAnchor:[form widthAnchor]] setActive:YES];
        return view;
    }

    void layOut() { [[window contentView] layoutSubtreeIfNeeded]; }

    RetainPtr<NSWindow> window =
        adoptNS([[NSWindow alloc] initWithContentRect:NSMakeRect(0, 0, 400, 300)
                                            styleMask:NSWindowStyleMaskTitled
                                              backing:NSBackingStoreBuffered
                                                defer:NO]);
    RetainPtr<NSScrollView> scroll =
        adoptNS([[NSScrollView alloc] initWithFrame:NSMakeRect(0, 0, 400, 300)]);
    RetainPtr<FlippedView> document = adoptNS([[FlippedView alloc] initWithFrame:NSZeroRect]);
    RetainPtr<NSStackView> form = adoptNS([[NSStackView alloc] initWithFrame:NSZeroRect]);
};

struct LayoutTest : ::testing::Test, Form {};

TEST_F(LayoutTest, ADocumentFillsItsClipViewAndItsEdgesHoldTheForm) {
    layOut();
    EXPECT_TRUE(NSEqualRects([document frame], NSMakeRect(0, 0, 400, 300)));
    EXPECT_TRUE(NSEqualRects([form frame], NSMakeRect(20, 20, 360, 260)));
}

TEST_F(LayoutTest, AFullWidthFieldFollowsTheWindow) {
    NSTextField* const field = addFullWidth([NSTextField textFieldWithString:@""]);
    layOut();
    EXPECT_EQ(NSWidth([field frame]), 360);
    [window setContentSize:NSMakeSize(600, 300)];
    EXPECT_EQ(NSWidth([field frame]), 560);
}

TEST_F(LayoutTest, ContentThatIsTallerThanTheWindowScrollsVerticallyOnly) {
    for (int i = 0; i < 20; ++i)
        addFullWidth([NSTextField textFieldWithString:@"x"]);
    layOut();
    EXPECT_GT(NSHeight([document frame]), 300);
    EXPECT_TRUE((bool)[scroll hasVerticalScroller]);
    EXPECT_FALSE((bool)[scroll hasHorizontalScroller]);
    EXPECT_EQ(NSWidth([document frame]), NSWidth([[scroll contentView] frame]));
    EXPECT_LT(NSWidth([document frame]), 400);
    EXPECT_EQ(NSWidth([form frame]), NSWidth([document frame]) - 40);
}

TEST_F(LayoutTest, AFieldThatIsTabbedIntoComesIntoView) {
    NSTextField* last = nil;
    for (int i = 0; i < 20; ++i)
        last = addFullWidth([NSTextField textFieldWithString:@"x"]);
    [window orderFront:nil];
    ASSERT_TRUE(NSIsEmptyRect([last visibleRect]));
    [window makeFirstResponder:last];
    EXPECT_TRUE(NSEqualRects([last visibleRect], [last bounds]));
    [window orderOut:nil];
}

TEST_F(LayoutTest, TheScrollerGoesWhenTheWindowBecomesTallEnough) {
    for (int i = 0; i < 20; ++i)
        addFullWidth([NSTextField textFieldWithString:@"x"]);
    layOut();
    [window setContentSize:NSMakeSize(400, 900)];
    EXPECT_EQ(NSWidth([document frame]), 400);
    EXPECT_EQ(NSHeight([document frame]), 900);
}

TEST_F(LayoutTest, AWrappingLabelIsAsHighAsItsTextNeeds) {
    NSTextField* const label = addFullWidth([NSTextField wrappingLabelWithString:@"Short"]);
    layOut();
    const CGFloat oneLine = NSHeight([label frame]);
    [label setStringValue:@"A sentence that is far too long to stand on a single line of a window "
                          @"as narrow as this one, so that it takes several."];
    ASSERT_TRUE(pumpUntil([&] { return NSHeight([label frame]) > oneLine; }));
    EXPECT_GE(NSHeight([label frame]), 3 * oneLine);
    const CGFloat narrow = NSHeight([label frame]);
    [window setContentSize:NSMakeSize(900, 300)];
    EXPECT_LT(NSHeight([label frame]), narrow);
}

TEST_F(LayoutTest, AnEmptyWrappingLabelKeepsOneLine) {
    NSTextField* const empty = addFullWidth([NSTextField wrappingLabelWithString:@""]);
    NSTextField* const filled = addFullWidth([NSTextField wrappingLabelWithString:@"Text"]);
    layOut();
    EXPECT_EQ(NSHeight([empty frame]), NSHeight([filled frame]));
}

TEST_F(LayoutTest, ALabelBecomesWiderWithItsText) {
    NSTextField* const label = [NSTextField labelWithString:@"A"];
    [form addArrangedSubview:label];
    layOut();
    const CGFloat before = NSWidth([label frame]);
    [label setStringValue:@"A much longer label"];
    EXPECT_TRUE((bool)[form needsLayout]);
    EXPECT_TRUE(pumpUntil([&] { return NSWidth([label frame]) > before; }));
}

TEST_F(LayoutTest, AsksAViewForItsSizeOncePerLayout) {
    const RetainPtr<AskedView> view = adoptNS([[AskedView alloc] initWithFrame:NSZeroRect]);
    [view setTranslatesAutoresizingMaskIntoConstraints:NO];
    [view want:NSMakeSize(30, 20)];
    [form addArrangedSubview:view];
    layOut();
    EXPECT_TRUE(NSEqualSizes([view frame].size, NSMakeSize(30, 20)));
    EXPECT_EQ([view asked], 1);
    [view want:NSMakeSize(50, 40)];
    layOut();
    EXPECT_TRUE(NSEqualSizes([view frame].size, NSMakeSize(50, 40)));
    EXPECT_EQ([view asked], 2);
}

TEST_F(LayoutTest, IsDoneBeforeAWindowIsSeen) {
    NSTextField* const field = addFullWidth([NSTextField textFieldWithString:@""]);
    [window orderFront:nil];
    EXPECT_EQ(NSWidth([field frame]), 360);
    [window orderOut:nil];
}

TEST_F(LayoutTest, UnflippedViewsArePlacedFromTheTopToo) {
    const RetainPtr<NSView> outer =
        adoptNS([[NSView alloc] initWithFrame:NSMakeRect(0, 0, 100, 80)]);
    const RetainPtr<NSView> inner = adoptNS([[NSView alloc] initWithFrame:NSZeroRect]);
    [inner setTranslatesAutoresizingMaskIntoConstraints:NO];
    [outer addSubview:inner];
    [NSLayoutConstraint activateConstraints:@[
        [[inner topAnchor] constraintEqualToAnchor:[outer topAnchor] constant:10],
        [[inner trailingAnchor] constraintEqualToAnchor:[outer trailingAnchor] constant:-5],
        [[inner widthAnchor] constraintEqualToConstant:30],
        [[inner heightAnchor] constraintEqualToConstant:20],
    ]];
    [outer layoutSubtreeIfNeeded];
    EXPECT_TRUE(NSEqualRects([inner frame], NSMakeRect(65, 50, 30, 20)));
}

TEST(LayoutMemory, AReleasedWindowTakesItsViewsWithIt) {
    const int before = flippedViews;
    @autoreleasepool {
        Form form;
        form.addFullWidth([NSTextField wrappingLabelWithString:@"x"]);
        [form.window orderFront:nil];
        form.layOut();
        EXPECT_EQ(flippedViews, before + 1);
        [form.window close];
    }
    EXPECT_EQ(flippedViews, before);
}

}  // namespace
