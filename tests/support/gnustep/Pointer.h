// The mouse pointer of the X display, for what looks at where it is rather than at events.
#pragma once

namespace veltrix::test {

// In pixels from the top left of the screen. Returns when the pointer is there.
void movePointer(int x, int y);

}  // namespace veltrix::test
