// Walks the windows through AppKit's own accessors. Reads only: nothing here changes a view.
#include "tests/tour/observer/Sight.h"

#import <AppKit/AppKit.h>

#include <condition_variable>
#include <mutex>

namespace veltrix::tour {
namespace {

std::string textOf(NSString* string) {
    return string == nil ? std::string() : std::string([string UTF8String]);
}

Frame onDisplay(NSRect screenRect) {
    const CGFloat height = NSHeight([[NSScreen mainScreen] frame]);
    return {NSMinX(screenRect), height - NSMaxY(screenRect), NSWidth(screenRect),
            NSHeight(screenRect)};
}

Frame frameOf(NSView* view, NSRect rect) {
    NSRect screenRect = [view convertRect:rect toView:nil];
    screenRect.origin = [[view window] convertBaseToScreen:screenRect.origin];
    return onDisplay(screenRect);
}

// What is being typed stands in the field editor.
std::string contentOf(NSTextField* field) {
    NSText* const editor = [field currentEditor];
    NSString* const text = editor != nil ? [editor string] : [[field cell] stringValue];
    if (![field isKindOfClass:[NSSecureTextField class]])
        return textOf(text);
    std::string bullets;
    for (NSUInteger i = 0; i < [text length]; ++i)
        bullets += "\u2022";
    return bullets;
}

std::string kindOf(NSButton* button) {
    if ([button isKindOfClass:[NSStatusBarButton class]])
        return "statusItem";
    return [[button cell] showsStateBy] == NSNoCellMask ? "button" : "checkBox";
}

std::string kindOf(NSTextField* field) {
    if (![field isEditable])
        return "text";
    return [field isKindOfClass:[NSSecureTextField class]] ? "secureField" : "field";
}

void describe(NSControl* control, SeenView& seen) {
    if ([control respondsToSelector:@selector(accessibilityLabel)])
        seen.label = textOf([(id)control accessibilityLabel]);
    seen.toolTip = textOf([control toolTip]);
    seen.enabled = [control isEnabled];
    seen.frame = frameOf(control, [control bounds]);
}

void addControl(NSView* view, std::vector<SeenView>& views) {
    SeenView seen;
    if ([view isKindOfClass:[NSButton class]]) {
        NSButton* const button = (NSButton*)view;
        seen.kind = kindOf(button);
        seen.title = textOf([button title]);
        seen.action = textOf(NSStringFromSelector([button action]));
        seen.on = [button state] == NSOnState;
    } else if ([view isKindOfClass:[NSTextField class]]) {
        seen.kind = kindOf((NSTextField*)view);
        seen.text = contentOf((NSTextField*)view);
    } else {
        return;
    }
    describe((NSControl*)view, seen);
    views.push_back(std::move(seen));
}

void addItems(NSMenuView* menuView, std::vector<SeenItem>& items) {
    NSMenu* const menu = [menuView menu];
    for (NSInteger i = 0; i < [menu numberOfItems]; ++i) {
        NSMenuItem* const item = (NSMenuItem*)[menu itemAtIndex:i];
        items.push_back({[item isSeparatorItem] ? std::string() : textOf([item title]),
                         (bool)[item isEnabled],
                         frameOf(menuView, [menuView rectOfItemAtIndex:i])});
    }
}

void walk(NSView* view, SeenWindow& window) {
    if ([view isHidden])
        return;
    addControl(view, window.views);
    if ([view isKindOfClass:[NSMenuView class]])
        addItems((NSMenuView*)view, window.items);
    for (NSView* child in [view subviews])
        walk(child, window);
}

struct Errand {
    std::mutex mutex;
    std::condition_variable arrival;
    bool done = false;
    Sight sight;
};

}  // namespace
}  // namespace veltrix::tour

@interface VeltrixTourErrand : NSObject
+ (void)run:(NSValue*)errand;
@end

@implementation VeltrixTourErrand
+ (void)run:(NSValue*)value {
    auto* const errand = static_cast<veltrix::tour::Errand*>([value pointerValue]);
    veltrix::tour::Sight sight = veltrix::tour::takeLook();
    // Notified under the lock: the errand is gone as soon as its owner can go on.
    const std::lock_guard lock(errand->mutex);
    errand->sight = std::move(sight);
    errand->done = true;
    errand->arrival.notify_one();
}
@end

namespace veltrix::tour {

Sight takeLook() {
    Sight sight;
    for (NSWindow* window in [NSApp windows]) {
        if (![window isVisible])
            continue;
        SeenWindow seen;
        seen.title = textOf([window title]);
        seen.key = [window isKeyWindow];
        seen.modal = [NSApp modalWindow] == window;
        seen.frame = onDisplay([window frame]);
        // The view around the content has the title bar's buttons.
        NSView* const content = [window contentView];
        walk([content superview] != nil ? [content superview] : content, seen);
        sight.push_back(std::move(seen));
    }
    return sight;
}

Sight lookFromOutside() {
    @autoreleasepool {
        Errand errand;
        [VeltrixTourErrand performSelectorOnMainThread:@selector(run:)
                                            withObject:[NSValue valueWithPointer:&errand]
                                         waitUntilDone:NO
                                                 modes:@[
                                                     NSDefaultRunLoopMode, NSModalPanelRunLoopMode,
                                                     NSEventTrackingRunLoopMode
                                                 ]];
        std::unique_lock lock(errand.mutex);
        errand.arrival.wait(lock, [&errand] { return errand.done; });
        return std::move(errand.sight);
    }
}

}  // namespace veltrix::tour
