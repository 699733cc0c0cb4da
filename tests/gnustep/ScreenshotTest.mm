// A window that takes a picture of its own content.
#import <AppKit/AppKit.h>

#include "common/RetainPtr.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

using veltrix::adoptNS;
using veltrix::RetainPtr;

namespace {

struct ScreenshotTest : ::testing::Test {
    ScreenshotTest() {
        [window setReleasedWhenClosed:NO];
        NSTextField* const field = [NSTextField textFieldWithString:@"Text"];
        [[window contentView] addSubview:field];
        [field setFrame:NSMakeRect(20, 20, 200, 28)];
        [window orderFront:nil];
        [window display];
    }
    ~ScreenshotTest() override { [window orderOut:nil]; }

    NSData* takePicture() {
        NSView* const content = [window contentView];
        const NSRect bounds = [content bounds];
        NSBitmapImageRep* const cached = [content bitmapImageRepForCachingDisplayInRect:bounds];
        [content layoutSubtreeIfNeeded];
        [content cacheDisplayInRect:bounds toBitmapImageRep:cached];
        const RetainPtr<NSImage> image = adoptNS([[NSImage alloc] initWithSize:bounds.size]);
        [image lockFocus];
        [[window backgroundColor] setFill];
        NSRectFill(bounds);
        [cached drawInRect:bounds];
        [image unlockFocus];
        NSBitmapImageRep* const bitmap =
            [NSBitmapImageRep imageRepWithData:[image TIFFRepresentation]];
        return [bitmap representationUsingType:NSBitmapImageFileTypePNG properties:@{}];
    }

    RetainPtr<NSWindow> window =
        adoptNS([[NSWindow alloc] initWithContentRect:NSMakeRect(0, 0, 320, 240)
                                            styleMask:NSWindowStyleMaskTitled
                                              backing:NSBackingStoreBuffered
                                                defer:NO]);
};

TEST_F(ScreenshotTest, IsAsLargeAsTheContentAndShowsIt) {
    const veltrix::test::TempFolder folder;
    NSString* const path = [NSString stringWithUTF8String:folder.path("shot.png").c_str()];
    NSError* error = nil;
    ASSERT_TRUE((bool)[takePicture() writeToURL:[NSURL fileURLWithPath:path]
                                        options:NSDataWritingAtomic
                                          error:&error]);
    NSBitmapImageRep* const picture =
        [NSBitmapImageRep imageRepWithData:[NSData dataWithContentsOfFile:path]];
    EXPECT_EQ([picture pixelsWide], 320);
    EXPECT_EQ([picture pixelsHigh], 240);
    // The inside of the field is white, what surrounds it is not.
    NSColor* const inside = [picture colorAtX:180 y:240 - 34];
    NSColor* const outside = [picture colorAtX:300 y:20];
    EXPECT_NEAR([inside brightnessComponent], 1, 0.001);
    EXPECT_LT([outside brightnessComponent], 0.99);
    EXPECT_GT([outside brightnessComponent], 0.9);
}

TEST_F(ScreenshotTest, CannotBeWrittenWhereThereIsNoFolder) {
    ::testing::internal::CaptureStderr();
    NSError* error = nil;
    EXPECT_FALSE((bool)[takePicture()
        writeToURL:[NSURL fileURLWithPath:@"/nonexistent/folder/shot.png"]
           options:NSDataWritingAtomic
             error:&error]);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

}  // namespace
