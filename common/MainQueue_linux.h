// The main queue of the Linux dispatcher, without a run loop of its own: whoever runs the main
// thread drains it. The AppKit shell does so from its run loop (MainQueue_linux.mm), a test
// without a window system from its own loop.
#pragma once

namespace veltrix {

// Runs everything submitted so far and whatever that submits, in order. Main thread only. Does
// nothing when called from inside work of the main queue, as Grand Central Dispatch does not
// either: what would hang on a Mac must hang here too.
void drainMainQueue();

// `waker` is called, from any thread, whenever the queue has just become non-empty; it must see to
// it that drainMainQueue is called soon. Set once, before anything is submitted.
void setMainQueueWaker(void (*waker)());

}  // namespace veltrix
