#include "app/DesktopShell.h"

#import "app/DesktopApp.h"
#include "common/Fatal.h"
#include "common/Form.h"
#include "common/StatusLine.h"
#include "common/Text.h"

namespace veltrix {
namespace {

// Lets Escape press `button`. AppKit gives the key to a second button called "Cancel" only: a
// first one has Return, and a button can have one key. So a button without a size has the other.
void answerEscape(NSAlert* alert, NSButton* button) {
    [alert layout];
    const RetainPtr<NSButton> escape = adoptNS([[NSButton alloc] initWithFrame:NSZeroRect]);
    [escape setTransparent:YES];
    [escape setRefusesFirstResponder:YES];
    [escape setAccessibilityElement:NO];
    [escape setKeyEquivalent:@"\033"];
    [escape setTarget:button];
    [escape setAction:@selector(performClick:)];
    [[[alert window] contentView] addSubview:escape];
}

}  // namespace

FieldTexts DesktopShell::fields() const {
    return {typedText([app_ home]), typedText([app_ node]), typedText([app_ storage]),
            typedText([app_ origin]), typedText([app_ retention])};
}

void DesktopShell::setNode(std::string_view path) {
    [[app_ node] setStringValue:toNSString(path)];
}

bool DesktopShell::save() {
    return [app_ save];
}

void DesktopShell::setControlsEnabled(bool enabled) {
    for (const RetainPtr<NSControl>& control : [app_ controls]) {
        [control setEnabled:enabled];
    }
}

void DesktopShell::setMenuActionsEnabled(bool enabled) {
    for (const RetainPtr<NSMenuItem>& item : [app_ menuActions]) {
        [item setEnabled:enabled];
    }
}

void DesktopShell::setStatus(std::string_view sentence) {
    tell([app_ status], sentence);
}

void DesktopShell::mirrorStatusInToolTip() {
    NSStatusItem* const item = [app_ statusItem];
    if (item == nil) {
        fatalProgrammingError("an action ended before the status item was made");
    }
    [[item button] setToolTip:[[app_ status] stringValue]];
}

void DesktopShell::bringForward() {
    [app_ bringForward];
}

bool DesktopShell::confirm(const Confirmation& confirmation) {
    const RetainPtr<NSAlert> alert = adoptNS([[NSAlert alloc] init]);
    [alert setMessageText:toNSString(confirmation.message)];
    [alert setInformativeText:toNSString(confirmation.information)];
    NSButton* const safe = [alert addButtonWithTitle:toNSString(confirmation.safeButton)];
    [alert addButtonWithTitle:toNSString(confirmation.proceedButton)];
    answerEscape(alert, safe);
    // A command from the menu bar finds the application inactive; the question needs the keyboard.
    [NSApp activateIgnoringOtherApps:YES];
    return [alert runModal] == NSAlertSecondButtonReturn;
}

bool DesktopShell::openFolder(const std::string& path) {
    return [[NSWorkspace sharedWorkspace] openURL:[NSURL fileURLWithPath:toNSString(path)]];
}

// What Foundation cannot read as a URL after all is no page to open, and no failure to report.
bool DesktopShell::openPage(const std::string& url) {
    NSURL* const page = [NSURL URLWithString:toNSString(url)];
    return page == nil || [[NSWorkspace sharedWorkspace] openURL:page];
}

void DesktopShell::runSetupSession(const std::string& executable, const std::string& home) {
    [app_ runSetupSessionWithExecutable:executable home:home];
}

}  // namespace veltrix
