#import <AppKit/AppKit.h>

#include "common/RetainPtr.h"
#include "support/AppKitDriver.h"

#include <gtest/gtest.h>

using veltrix::adoptNS;
using veltrix::RetainPtr;
using veltrix::test::ModalResponder;
using veltrix::test::pressCloseButton;
using veltrix::test::pressKey;

@interface CloseAsked : NSObject <NSWindowDelegate> {
  @public
    int _asked;
}
@end

@implementation CloseAsked
- (BOOL)windowShouldClose:(NSWindow*)window {
    if (++_asked > 1)
        [NSApp stopModal];
    return NO;
}
@end

namespace {

struct ModalSessionTest : ::testing::Test {
    ModalSessionTest() {
        [window setReleasedWhenClosed:NO];
        [window setDelegate:delegate];
    }
    ~ModalSessionTest() override {
        [window setDelegate:nil];
        [window orderOut:nil];
    }

    RetainPtr<CloseAsked> delegate = adoptNS([[CloseAsked alloc] init]);
    RetainPtr<NSWindow> window = adoptNS([[NSWindow alloc]
        initWithContentRect:NSMakeRect(0, 0, 300, 100)
                  styleMask:NSWindowStyleMaskTitled | NSWindowStyleMaskClosable
                    backing:NSBackingStoreBuffered
                      defer:NO]);
};

TEST_F(ModalSessionTest, StoppingEndsItWithoutAnyFurtherEvent) {
    const ModalResponder responder([](NSWindow*) { [NSApp stopModal]; });
    EXPECT_EQ([NSApp runModalForWindow:window], NSModalResponseStop);
    EXPECT_TRUE(responder.responded());
}

TEST_F(ModalSessionTest, HandsOutTheCodeItIsStoppedWith) {
    const ModalResponder responder([](NSWindow*) { [NSApp stopModalWithCode:42]; });
    EXPECT_EQ([NSApp runModalForWindow:window], 42);
}

TEST_F(ModalSessionTest, EscapeDoesNothingInAPlainWindow) {
    CloseAsked* const asked = delegate;
    const ModalResponder responder([asked](NSWindow* modal) {
        pressKey(modal, @"\033");
        // Had Escape ended the session, nobody would handle what comes next.
        [asked performSelector:@selector(windowShouldClose:)
                    withObject:modal
                    afterDelay:0
                       inModes:@[ NSModalPanelRunLoopMode ]];
        [asked performSelector:@selector(windowShouldClose:)
                    withObject:modal
                    afterDelay:0.05
                       inModes:@[ NSModalPanelRunLoopMode ]];
    });
    EXPECT_EQ([NSApp runModalForWindow:window], NSModalResponseStop);
    EXPECT_EQ(delegate.get()->_asked, 2);
}

TEST_F(ModalSessionTest, TheCloseButtonAsksTheDelegateEveryTime) {
    const ModalResponder responder([](NSWindow* modal) {
        pressCloseButton(modal);
        EXPECT_TRUE((bool)[modal isVisible]);
        pressCloseButton(modal);
    });
    EXPECT_EQ([NSApp runModalForWindow:window], NSModalResponseStop);
    EXPECT_EQ(delegate.get()->_asked, 2);
}

TEST_F(ModalSessionTest, OneMayRunInsideAnother) {
    const RetainPtr<NSAlert> alert = adoptNS([[NSAlert alloc] init]);
    NSAlert* const inner = alert;
    const ModalResponder outer([inner](NSWindow*) {
        const ModalResponder answer([](NSWindow*) { [NSApp stopModalWithCode:1001]; });
        EXPECT_EQ([inner runModal], 1001);
        EXPECT_TRUE(answer.responded());
        [NSApp stopModalWithCode:7];
    });
    EXPECT_EQ([NSApp runModalForWindow:window], 7);
}

}  // namespace
