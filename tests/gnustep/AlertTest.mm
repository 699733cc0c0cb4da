#import <AppKit/AppKit.h>

#include "common/RetainPtr.h"
#include "support/AppKitDriver.h"

#include <gtest/gtest.h>

using veltrix::adoptNS;
using veltrix::RetainPtr;
using veltrix::test::buttonTitled;
using veltrix::test::labelSaying;
using veltrix::test::ModalResponder;
using veltrix::test::pressButtonTitled;
using veltrix::test::pressKey;

namespace {

struct AlertTest : ::testing::Test {
    AlertTest() {
        [alert setMessageText:@"Stop now?"];
        [alert setInformativeText:@"Recording ends."];
    }

    void addButtons(NSString* first, NSString* second) {
        [alert addButtonWithTitle:first];
        [alert addButtonWithTitle:second];
    }

    NSInteger answer(std::function<void(NSWindow*)> respond) {
        const ModalResponder responder(std::move(respond));
        const NSInteger code = [alert runModal];
        EXPECT_TRUE(responder.responded());
        return code;
    }

    RetainPtr<NSAlert> alert = adoptNS([[NSAlert alloc] init]);
};

TEST_F(AlertTest, SaysWhatItIsTold) {
    addButtons(@"Cancel", @"Stop");
    answer([](NSWindow* window) {
        EXPECT_TRUE(labelSaying(window, @"Stop now?"));
        EXPECT_TRUE(labelSaying(window, @"Recording ends."));
        pressButtonTitled(window, @"Cancel");
    });
}

TEST_F(AlertTest, AnswersWithThePlaceOfTheButton) {
    addButtons(@"Cancel", @"Stop");
    EXPECT_EQ(answer([](NSWindow* window) { pressButtonTitled(window, @"Cancel"); }),
              NSAlertFirstButtonReturn);
    EXPECT_EQ(answer([](NSWindow* window) { pressButtonTitled(window, @"Stop"); }),
              NSAlertSecondButtonReturn);
}

TEST_F(AlertTest, ReturnIsTheFirstButton) {
    addButtons(@"Cancel", @"Stop");
    EXPECT_EQ(answer([](NSWindow* window) { pressKey(window, @"\r"); }), NSAlertFirstButtonReturn);
}

TEST_F(AlertTest, EscapeIsTheButtonThatCancelsWhereverItStands) {
    addButtons(@"Stop", @"Cancel");
    EXPECT_EQ(answer([](NSWindow* window) { pressKey(window, @"\033"); }),
              NSAlertSecondButtonReturn);
}

TEST_F(AlertTest, EscapeIsNothingWithoutAButtonThatCancels) {
    addButtons(@"Keep", @"Stop");
    EXPECT_EQ(answer([](NSWindow* window) {
                  pressKey(window, @"\033");
                  pressKey(window, @"\r");
              }),
              NSAlertFirstButtonReturn);
}

TEST_F(AlertTest, RunsTheWindowThatItsLayoutMade) {
    addButtons(@"Keep", @"Stop");
    [alert layout];
    NSWindow* const laidOut = [alert window];
    ASSERT_NE(laidOut, nil);
    EXPECT_EQ([alert window], laidOut);
    const RetainPtr<NSTextField> note = [NSTextField labelWithString:@"Added"];
    [[laidOut contentView] addSubview:note];
    EXPECT_EQ(answer([](NSWindow* window) {
                  EXPECT_TRUE(labelSaying(window, @"Added"));
                  pressButtonTitled(window, @"Stop");
              }),
              NSAlertSecondButtonReturn);
}

TEST_F(AlertTest, LayoutTakesInWhatWasAddedSince) {
    [alert layout];
    EXPECT_TRUE(buttonTitled([alert window], @"OK"));
    addButtons(@"Keep", @"Stop");
    [alert layout];
    EXPECT_TRUE(buttonTitled([alert window], @"Stop"));
}

TEST_F(AlertTest, TheFirstButtonStandsAtTheRight) {
    addButtons(@"Cancel", @"Stop");
    answer([](NSWindow* window) {
        EXPECT_GT(NSMinX([buttonTitled(window, @"Cancel") frame]),
                  NSMaxX([buttonTitled(window, @"Stop") frame]));
        pressButtonTitled(window, @"Cancel");
    });
}

TEST_F(AlertTest, IsHighEnoughForALongText) {
    NSString* const text = [@"" stringByPaddingToLength:600
                                             withString:@"many words "
                                        startingAtIndex:0];
    [alert setInformativeText:text];
    addButtons(@"Cancel", @"Stop");
    answer([text](NSWindow* window) {
        NSTextField* const label = labelSaying(window, text);
        NSButton* const button = buttonTitled(window, @"Cancel");
        const NSRect labelFrame = [label convertRect:[label bounds] toView:nil];
        const NSRect buttonFrame = [button convertRect:[button bounds] toView:nil];
        EXPECT_GT(NSHeight(labelFrame), 80);
        EXPECT_GT(NSMinY(labelFrame), NSMaxY(buttonFrame));
        EXPECT_GT(NSMinY(buttonFrame), 0);
        EXPECT_LT(NSMaxY(labelFrame), NSHeight([[window contentView] frame]));
        pressButtonTitled(window, @"Cancel");
    });
}

TEST_F(AlertTest, HasAButtonWhenNobodyAddsOne) {
    EXPECT_EQ(answer([](NSWindow* window) { pressButtonTitled(window, @"OK"); }),
              NSAlertFirstButtonReturn);
}

TEST_F(AlertTest, ItsWindowIsGoneAfterwards) {
    addButtons(@"Cancel", @"Stop");
    RetainPtr<NSWindow> seen;
    answer([&seen](NSWindow* window) {
        seen = window;
        pressButtonTitled(window, @"Cancel");
    });
    EXPECT_FALSE((bool)[seen isVisible]);
    EXPECT_FALSE([NSApp modalWindow]);
}

}  // namespace
