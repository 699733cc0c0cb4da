// Driving real AppKit objects as a person would: pressing buttons, typing into fields, choosing
// from menus, and answering modal windows from outside. Plain AppKit, for Apple's and for
// GNUstep's. Main thread only.
#pragma once

#import <AppKit/AppKit.h>

#include <functional>
#include <memory>

namespace veltrix::test {

// Handles events and lets the run loop work until the condition holds; false when that did not
// happen in time (see patience() in WaitFor.h).
[[nodiscard]] bool pumpUntil(const std::function<bool()>& condition);

// Finding. nil if there is none.
NSView* findView(NSView* root, const std::function<bool(NSView*)>& matches);
NSButton* buttonTitled(NSWindow* window, NSString* title);
NSButton* buttonIdentified(NSWindow* window, NSString* identifier);
NSTextField* fieldLabelled(NSWindow* window, NSString* accessibilityLabel);
NSTextField* labelSaying(NSWindow* window, NSString* text);

// Acting. False if there is no such thing or it is disabled.
bool press(NSButton* button);
bool pressButtonTitled(NSWindow* window, NSString* title);
bool chooseMenuItem(NSMenu* menu, NSString* title);
// Replaces what is in the field, through the field editor.
bool typeInto(NSTextField* field, NSString* text);
// As from the keyboard; handled when events are.
void pressKey(NSWindow* window, NSString* characters, NSEventModifierFlags modifiers = 0);
// As by the window's close button: asks windowShouldClose:.
void pressCloseButton(NSWindow* window);

// Answers the next modal window from outside, as its loop blocks the test. `respond` is called
// once, with that window, when the session runs; it must do something that ends the session. A
// session that already runs when this is made does not count.
//
//     const ModalResponder cancel([](NSWindow* alert) { pressButtonTitled(alert, @"Cancel"); });
//     [shell confirm];
//     EXPECT_TRUE(cancel.responded());
class ModalResponder {
  public:
    explicit ModalResponder(std::function<void(NSWindow*)> respond);
    ~ModalResponder();
    ModalResponder(const ModalResponder&) = delete;
    ModalResponder& operator=(const ModalResponder&) = delete;

    [[nodiscard]] bool responded() const;

  private:
    struct Watch;
    std::unique_ptr<Watch> watch_;
};

}  // namespace veltrix::test
