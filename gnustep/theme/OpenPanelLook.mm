// The open panel without the logo, the large title and the buttons for floppy disks, and with room
// for more than two columns.
#include "gnustep/controls/PaintedImage.h"
#include "gnustep/runtime/Immortal.h"
#include "gnustep/runtime/MethodWrap.h"
#include "gnustep/runtime/SetUp.h"
#include "gnustep/theme/LightTheme.h"
#include "gnustep/theme/Palette.h"

#include "common/RetainPtr.h"

namespace palette = veltrix::gnustep::palette;
using veltrix::RetainPtr;

namespace {

constexpr NSSize kPanelSize = {640, 460};
constexpr NSSize kIconSize = {16, 16};
constexpr CGFloat kMargin = 16;
constexpr CGFloat kGap = 10;

NSView* firstOfClass(NSView* parent, Class kind) {
    for (NSView* view in [parent subviews])
        if ([view isKindOfClass:kind])
            return view;
    return nil;
}

void paintFolder() {
    NSBezierPath* const tab = [NSBezierPath bezierPathWithRoundedRect:NSMakeRect(1, 7, 7, 6.5)
                                                              xRadius:1.5
                                                              yRadius:1.5];
    NSBezierPath* const front = [NSBezierPath bezierPathWithRoundedRect:NSMakeRect(1, 2.5, 14, 9)
                                                                xRadius:1.5
                                                                yRadius:1.5];
    [palette::accent() setFill];
    [tab fill];
    [palette::focusRing() setFill];
    [front fill];
}

void paintDocument() {
    NSBezierPath* const sheet = [NSBezierPath bezierPathWithRoundedRect:NSMakeRect(3.5, 1.5, 9, 13)
                                                                xRadius:1.5
                                                                yRadius:1.5];
    [palette::control() setFill];
    [sheet fill];
    [palette::scrollKnob() setStroke];
    [sheet stroke];
}

}  // namespace

@interface NSSavePanel (LibraryParts)
- (id)_initWithoutGModel;
@end

@implementation NSSavePanel (Look)

- (void)arrangeNeatly {
    for (NSView* view in [_topView subviews])
        [view setHidden:![view isKindOfClass:[NSBrowser class]]];
    [self setContentSize:kPanelSize];
    [self setMinSize:NSMakeSize(480, 360)];

    [_okButton setImage:nil];
    [_okButton setAlternateImage:nil];
    NSView* const form = firstOfClass(_bottomView, [NSForm class]);
    const CGFloat width = NSWidth([_bottomView bounds]);
    const CGFloat buttonsTop = kMargin + veltrix::gnustep::kControlHeight;
    [_bottomView setFrameSize:NSMakeSize(width, buttonsTop + 2 * kGap + NSHeight([form frame]))];
    [form setFrame:NSMakeRect(kMargin, buttonsTop + kGap, width - 2 * kMargin,
                              NSHeight([form frame]))];
    [self placeButtonsFrom:width - kMargin];
    [_topView setFrame:NSMakeRect(0, NSHeight([_bottomView frame]), width,
                                  kPanelSize.height - NSHeight([_bottomView frame]))];
    [_browser setFrame:NSInsetRect([_topView bounds], kMargin, 0)];
    [_browser setFrameSize:NSMakeSize(width - 2 * kMargin, NSHeight([_topView bounds]) - kMargin)];
}

// "OK" at the right, then "Cancel"; what else there is, is for disks and the home folder.
- (void)placeButtonsFrom:(CGFloat)right {
    constexpr CGFloat kWidth = 88;
    for (NSView* view in [[_bottomView subviews] reverseObjectEnumerator]) {
        NSButton* const button = veltrix::dynamicCast<NSButton>(view);
        if (!button)
            continue;
        [button setHidden:[[button title] length] == 0 || [button image] != nil];
        if ([button isHidden])
            continue;
        right -= kWidth;
        [button setFrame:NSMakeRect(right, kMargin, kWidth, veltrix::gnustep::kControlHeight)];
        right -= kGap;
    }
}

@end

@implementation NSWorkspace (Look)

// Two pictures for everything: they stand beside names in the open panel.
- (NSImage*)iconForFile:(NSString*)path {
    static veltrix::gnustep::Immortal<RetainPtr<NSImage>> folder(
        veltrix::gnustep::makePaintedImage(kIconSize, paintFolder));
    static veltrix::gnustep::Immortal<RetainPtr<NSImage>> document(
        veltrix::gnustep::makePaintedImage(kIconSize, paintDocument));
    BOOL isFolder = NO;
    [[NSFileManager defaultManager] fileExistsAtPath:path isDirectory:&isFolder];
    return isFolder ? *folder : *document;
}

@end

namespace veltrix::gnustep {
namespace {

id (*originalInit)(id, SEL) = nullptr;
id init(id self, SEL command) {
    const id panel = originalInit(self, command);
    [panel arrangeNeatly];
    return panel;
}

}  // namespace

void installOpenPanelLook() {
    wrapMethod([NSSavePanel class], @selector(_initWithoutGModel), init, originalInit);
}

}  // namespace veltrix::gnustep
