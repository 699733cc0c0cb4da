#include "gnustep/statusbar/MenuTracking.h"

#include "common/RetainPtr.h"
#include "gnustep/statusbar/MenuPanel.h"

#import <GNUstepGUI/GSDisplayServer.h>

namespace veltrix::gnustep {
namespace {

constexpr NSInteger kNothing = -1;

constexpr NSEventMask kTrackedEvents = NSEventMaskLeftMouseDown | NSEventMaskLeftMouseUp |
                                       NSEventMaskLeftMouseDragged | NSEventMaskMouseMoved |
                                       NSEventMaskRightMouseDown | NSEventMaskRightMouseUp |
                                       NSEventMaskKeyDown;

class MenuTracker {
  public:
    MenuTracker(NSMenu* menu, NSRect anchor, NSScreen* screen)
        : menu_(menu), anchor_(anchor), screen_(screen) {}

    // The item chosen, or kNothing.
    NSInteger run() {
        open();
        while (!done_) {
            @autoreleasepool {
                handle([NSApp nextEventMatchingMask:kTrackedEvents
                                          untilDate:[NSDate distantFuture]
                                             inMode:NSEventTrackingRunLoopMode
                                            dequeue:YES]);
            }
        }
        close();
        return chosen_;
    }

  private:
    void open() {
        [menu_ update];
        panel_ = adoptNS([[VeltrixMenuPanel alloc] initWithMenu:menu_]);
        [panel_ dropDownFrom:anchor_ onScreen:screen_];
        // So that a click on another program's window comes here too.
        [GSServerForWindow(panel_.get()) capturemouse:(int)[panel_ windowNumber]];
    }

    void close() {
        [GSServerForWindow(panel_.get()) releasemouse];
        [panel_ orderOut:nil];
    }

    void handle(NSEvent* event) {
        switch ([event type]) {
        case NSEventTypeMouseMoved:
        case NSEventTypeLeftMouseDragged:
            highlight(itemUnderMouse());
            break;
        case NSEventTypeLeftMouseDown:
        case NSEventTypeRightMouseDown:
            pressed();
            break;
        case NSEventTypeLeftMouseUp:
        case NSEventTypeRightMouseUp:
            released();
            break;
        case NSEventTypeKeyDown:
            typed([event charactersIgnoringModifiers]);
            break;
        default:
            break;
        }
    }

    void pressed() {
        if (mouseIsOverMenu())
            highlight(itemUnderMouse());
        else
            done_ = true;
    }

    void released() {
        const NSInteger item = itemUnderMouse();
        if (item != kNothing)
            choose(item);
        else if (!mouseIsOverMenu() && !NSPointInRect([NSEvent mouseLocation], anchor_))
            done_ = true;
    }

    void typed(NSString* characters) {
        switch ([characters length] > 0 ? [characters characterAtIndex:0] : 0) {
        case 0x1b:
            done_ = true;
            break;
        case NSUpArrowFunctionKey:
            highlight(neighbour([[panel_ menuView] highlightedItemIndex], -1));
            break;
        case NSDownArrowFunctionKey:
            highlight(neighbour([[panel_ menuView] highlightedItemIndex], +1));
            break;
        case '\r':
        case ' ':
            if (canChoose([[panel_ menuView] highlightedItemIndex]))
                choose([[panel_ menuView] highlightedItemIndex]);
            break;
        default:
            break;
        }
    }

    void choose(NSInteger item) {
        chosen_ = item;
        done_ = true;
    }

    void highlight(NSInteger item) {
        if ([[panel_ menuView] highlightedItemIndex] != item)
            [[panel_ menuView] setHighlightedItemIndex:item];
    }

    bool mouseIsOverMenu() const { return NSPointInRect([NSEvent mouseLocation], [panel_ frame]); }

    NSInteger itemUnderMouse() const {
        if (!mouseIsOverMenu())
            return kNothing;
        NSMenuView* const view = [panel_ menuView];
        const NSPoint inWindow = [panel_ convertScreenToBase:[NSEvent mouseLocation]];
        const NSInteger item = [view indexOfItemAtPoint:[view convertPoint:inWindow fromView:nil]];
        return canChoose(item) ? item : kNothing;
    }

    bool canChoose(NSInteger item) const {
        if (item < 0 || item >= [menu_ numberOfItems])
            return false;
        NSMenuItem* const candidate = [menu_ itemAtIndex:item];
        return [candidate isEnabled] && ![candidate isSeparatorItem] && ![candidate hasSubmenu];
    }

    // The next item that can be chosen, round the ends; kNothing if there is none.
    NSInteger neighbour(NSInteger item, NSInteger step) const {
        const NSInteger count = [menu_ numberOfItems];
        if (item == kNothing && step < 0)
            item = count;
        for (NSInteger tried = 0; tried < count; ++tried) {
            item = (item + step + count) % count;
            if (canChoose(item))
                return item;
        }
        return kNothing;
    }

    NSMenu* menu_;
    NSRect anchor_;
    NSScreen* screen_;
    RetainPtr<VeltrixMenuPanel> panel_;
    NSInteger chosen_ = kNothing;
    bool done_ = false;
};

}  // namespace

void trackMenu(NSMenu* menu, NSRect anchor, NSScreen* screen, const std::function<void()>& closed) {
    const NSInteger chosen = MenuTracker(menu, anchor, screen).run();
    closed();
    if (chosen != kNothing)
        [menu performActionForItemAtIndex:chosen];
}

}  // namespace veltrix::gnustep
