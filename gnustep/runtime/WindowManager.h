// The window manager of the X display that $DISPLAY names, as the Extended Window Manager Hints
// (EWMH) describe it. Each call connects and disconnects; without a display they do nothing.
#pragma once

#include <cstdint>

namespace veltrix::gnustep {

// By _NET_SUPPORTING_WM_CHECK.
bool isWindowManagerRunning();

// Keeps other windows, also when maximised, out of the uppermost pixels of the screen while that
// window is shown there (_NET_WM_STRUT_PARTIAL).
void reserveTopOfScreen(std::uint32_t window, std::uint32_t height, std::uint32_t screenWidth);

// Raises the window and gives it the keyboard, although another program has it
// (_NET_ACTIVE_WINDOW): for what a person has asked for elsewhere.
void activateWindow(std::uint32_t window);

}  // namespace veltrix::gnustep
