#include "support/AppKitDriver.h"

#include "common/RetainPtr.h"
#include "support/WaitFor.h"

#include <chrono>

namespace veltrix::test {
namespace {

constexpr NSTimeInterval kSlice = 0.01;

void pumpOnce() {
    @autoreleasepool {
        NSEvent* const event =
            [NSApp nextEventMatchingMask:NSEventMaskAny
                               untilDate:[NSDate dateWithTimeIntervalSinceNow:kSlice]
                                  inMode:NSDefaultRunLoopMode
                                 dequeue:YES];
        if (event)
            [NSApp sendEvent:event];
        [NSApp updateWindows];
    }
}

template <typename Kind>
Kind* findKind(NSWindow* window, const std::function<bool(Kind*)>& matches) {
    return dynamicCast<Kind>(findView([window contentView], [&matches](NSView* view) {
        Kind* const candidate = dynamicCast<Kind>(view);
        return candidate && matches(candidate);
    }));
}

}  // namespace

bool pumpUntil(const std::function<bool()>& condition) {
    const auto deadline = std::chrono::steady_clock::now() + patience();
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        pumpOnce();
    }
    return true;
}

NSView* findView(NSView* root, const std::function<bool(NSView*)>& matches) {
    if (!root || matches(root))
        return root;
    for (NSView* view in [root subviews])
        if (NSView* const found = findView(view, matches))
            return found;
    return nil;
}

NSButton* buttonTitled(NSWindow* window, NSString* title) {
    return findKind<NSButton>(
        window, [title](NSButton* button) { return (bool)[[button title] isEqualToString:title]; });
}

NSButton* buttonIdentified(NSWindow* window, NSString* identifier) {
    return findKind<NSButton>(window, [identifier](NSButton* button) {
        return (bool)[[button identifier] isEqualToString:identifier];
    });
}

NSTextField* fieldLabelled(NSWindow* window, NSString* accessibilityLabel) {
    return findKind<NSTextField>(window, [accessibilityLabel](NSTextField* field) {
        return
            [field isEditable] && [[field accessibilityLabel] isEqualToString:accessibilityLabel];
    });
}

NSTextField* labelSaying(NSWindow* window, NSString* text) {
    return findKind<NSTextField>(window, [text](NSTextField* field) {
        return ![field isEditable] && [[field stringValue] isEqualToString:text];
    });
}

bool press(NSButton* button) {
    if (!button || ![button isEnabled])
        return false;
    [button performClick:nil];
    return true;
}

bool pressButtonTitled(NSWindow* window, NSString* title) {
    return press(buttonTitled(window, title));
}

bool chooseMenuItem(NSMenu* menu, NSString* title) {
    const NSInteger index = [menu indexOfItemWithTitle:title];
    if (index < 0 || ![[menu itemAtIndex:index] isEnabled])
        return false;
    [menu performActionForItemAtIndex:index];
    return true;
}

bool typeInto(NSTextField* field, NSString* text) {
    [[field window] makeFirstResponder:nil];  // a field that is already being edited refuses
    if (!field || ![field isEnabled] || ![[field window] makeFirstResponder:field])
        return false;
    NSText* const editor = [field currentEditor];
    [editor setSelectedRange:NSMakeRange(0, [[editor string] length])];
    [editor insertText:text];
    [[field window] makeFirstResponder:nil];
    return true;
}

void pressKey(NSWindow* window, NSString* characters, NSEventModifierFlags modifiers) {
    for (const NSEventType type : {NSEventTypeKeyDown, NSEventTypeKeyUp})
        [NSApp postEvent:[NSEvent keyEventWithType:type
                                                location:NSZeroPoint
                                           modifierFlags:modifiers
                                               timestamp:[[NSProcessInfo processInfo] systemUptime]
                                            windowNumber:[window windowNumber]
                                                 context:nil
                                              characters:characters
                             charactersIgnoringModifiers:characters
                                               isARepeat:NO
                                                 keyCode:0]
                 atStart:NO];
}

void pressCloseButton(NSWindow* window) {
    [window performClose:nil];
}

}  // namespace veltrix::test

// Looks for the modal window from inside its session: the timer runs in no other mode.
@interface VeltrixModalWatch : NSObject {
  @public
    veltrix::RetainPtr<NSTimer> _timer;
    veltrix::RetainPtr<NSWindow> _earlier;
    std::function<void(NSWindow*)> _respond;
    bool _responded;
}
- (void)look:(NSTimer*)timer;
@end

@implementation VeltrixModalWatch

- (void)look:(NSTimer*)timer {
    NSWindow* const window = [NSApp modalWindow];
    if (!window || window == _earlier.get() || ![window isVisible])
        return;
    [timer invalidate];
    _responded = true;
    _respond(window);
}

@end

namespace veltrix::test {

struct ModalResponder::Watch {
    RetainPtr<VeltrixModalWatch> object;
};

ModalResponder::ModalResponder(std::function<void(NSWindow*)> respond)
    : watch_(std::make_unique<Watch>()) {
    watch_->object = adoptNS([[VeltrixModalWatch alloc] init]);
    VeltrixModalWatch* const object = watch_->object.get();
    object->_respond = std::move(respond);
    object->_earlier = [NSApp modalWindow];
    object->_timer = [NSTimer timerWithTimeInterval:kSlice
                                             target:object
                                           selector:@selector(look:)
                                           userInfo:nil
                                            repeats:YES];
    [[NSRunLoop currentRunLoop] addTimer:object->_timer forMode:NSModalPanelRunLoopMode];
}

ModalResponder::~ModalResponder() {
    [watch_->object.get()->_timer invalidate];
}

bool ModalResponder::responded() const {
    return watch_->object.get()->_responded;
}

}  // namespace veltrix::test
