// The steps of the self-test that need the real window. Main thread only.
#pragma once

#include <string>

@class DesktopApp;

namespace veltrix {

// Hides and restores the window, has "status" refused, writes a screenshot of the window's content
// to `output`, looks for the page entries in the menu, prints one line and asks to terminate. Ends
// the process with kNoScreenshotStatus, printing nothing, when there is no screenshot.
void runSmokeTest(DesktopApp* app, const std::string& output);

}  // namespace veltrix
