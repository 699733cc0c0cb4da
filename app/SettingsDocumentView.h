// What the settings window scrolls: a plain view, but laid out from the top, so that a window
// taller than its content shows the form at the top. Main thread only.
#pragma once

#import <AppKit/AppKit.h>

@interface SettingsDocumentView : NSView
@end
