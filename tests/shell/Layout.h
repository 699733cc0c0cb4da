// Where the parts of a window are. Main thread only.
#pragma once

#import <AppKit/AppKit.h>

namespace veltrix::test {

// The one scroll view of a window, and the column of everything inside it.
NSScrollView* scrollView(NSWindow* window);
NSStackView* rootStack(NSWindow* window);

// The view's rectangle in the window's coordinates, y upwards.
NSRect inWindow(NSView* view);

// Gives the content this size and lays it out.
void resizeContent(NSWindow* window, CGFloat width, CGFloat height);

// What the label needs to show all of its text at its present width.
CGFloat neededHeight(NSTextField* label);

}  // namespace veltrix::test
