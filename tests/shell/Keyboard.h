// The keyboard and the pasteboard in a window. Main thread only.
#pragma once

#import <AppKit/AppKit.h>

namespace veltrix::test {

// Focuses the field and replaces what is in it, and leaves it at that: the text is still being
// edited, as it is while a person has not left the field.
void beginTyping(NSTextField* field, NSString* text);

// The field that is being edited, nil if there is none.
NSTextField* focusedField(NSWindow* window);

void putOnPasteboard(NSString* text);

}  // namespace veltrix::test
