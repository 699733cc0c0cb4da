#include "app/SmokeTestRun.h"

#import "app/DesktopApp.h"
#include "app/SmokeTest.h"
#include "common/RetainPtr.h"
#include "common/Text.h"

#import <AppKit/AppKit.h>

#include <cstdio>
#include <cstdlib>

namespace veltrix {
namespace {

// The window's background under what its views draw, as a person sees it.
RetainPtr<NSImage> pictureOf(NSView* view, NSColor* background) {
    const NSRect bounds = [view bounds];
    NSBitmapImageRep* const cached = [view bitmapImageRepForCachingDisplayInRect:bounds];
    if (cached == nil) {
        return {};
    }
    [view layoutSubtreeIfNeeded];
    [view cacheDisplayInRect:bounds toBitmapImageRep:cached];
    RetainPtr<NSImage> image = adoptNS([[NSImage alloc] initWithSize:bounds.size]);
    [image lockFocus];
    [background setFill];
    NSRectFill(bounds);
    [cached drawInRect:bounds];
    [image unlockFocus];
    return image;
}

bool writePng(NSImage* image, const std::string& output) {
    NSData* const tiff = [image TIFFRepresentation];
    if (tiff == nil) {
        return false;
    }
    NSBitmapImageRep* const bitmap = [NSBitmapImageRep imageRepWithData:tiff];
    NSData* const png = [bitmap representationUsingType:NSBitmapImageFileTypePNG properties:@{}];
    return png != nil && [png writeToURL:[NSURL fileURLWithPath:toNSString(output)]
                                 options:NSDataWritingAtomic
                                   error:nil];
}

bool writeScreenshot(NSWindow* window, const std::string& output) {
    NSView* const content = [window contentView];
    const RetainPtr<NSImage> image =
        content != nil ? pictureOf(content, [window backgroundColor]) : RetainPtr<NSImage>();
    return image && writePng(image, output);
}

bool hasPageEntries(NSMenu* menu) {
    return [menu itemWithTitle:@"Recordings"] != nil && [menu itemWithTitle:@"Shared Links"] != nil;
}

}  // namespace

void runSmokeTest(DesktopApp* app, const std::string& output) {
    NSWindow* const window = [app window];
    SmokeTestFindings findings;
    [window orderOut:nil];
    findings.visibleAfterHide = [window isVisible];
    [app showSettings];
    [app perform:"status"];
    findings.statusAfterCommand = toUtf8([[app status] stringValue]);
    if (!writeScreenshot(window, output)) {
        std::exit(kNoScreenshotStatus);
    }
    findings.menuEntries = hasPageEntries([[app statusItem] menu]);
    findings.busy = [app busy];
    findings.visibleNow = [window isVisible];
    const std::string_view line = smokeTestLine(findings);
    std::fwrite(line.data(), 1, line.size(), stdout);
    std::fflush(stdout);
    [NSApp terminate:nil];
}

}  // namespace veltrix
