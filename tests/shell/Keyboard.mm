#include "shell/Keyboard.h"

#include "common/RetainPtr.h"

namespace veltrix::test {

void beginTyping(NSTextField* field, NSString* text) {
    [[field window] makeFirstResponder:nil];  // a field that is already being edited refuses
    [[field window] makeFirstResponder:field];
    NSText* const editor = [field currentEditor];
    [editor setSelectedRange:NSMakeRange(0, [[editor string] length])];
    [editor insertText:text];
}

// A field is edited through the window's field editor, whose delegate it is.
NSTextField* focusedField(NSWindow* window) {
    NSResponder* const responder = [window firstResponder];
    NSText* const editor = dynamicCast<NSText>(responder);
    return dynamicCast<NSTextField>(editor != nil ? (id)[editor delegate] : responder);
}

void putOnPasteboard(NSString* text) {
    NSPasteboard* const pasteboard = [NSPasteboard generalPasteboard];
    [pasteboard declareTypes:@[ NSPasteboardTypeString ] owner:nil];
    [pasteboard setString:text forType:NSPasteboardTypeString];
}

}  // namespace veltrix::test
