// The layout itself: from the top of a view tree downwards, every view gives its children frames.
#pragma once

#import <AppKit/AppKit.h>

namespace veltrix::gnustep {

// Lays out the whole tree that the view belongs to, at once. Does nothing while a layout is under
// way: that one will see the change.
void layOutTreeOf(NSView* view);

// The same, when the run loop is next idle. Any number of requests until then make one layout.
void scheduleLayoutOfTreeOf(NSView* view);
bool isLayoutScheduled(NSView* view);

}  // namespace veltrix::gnustep
