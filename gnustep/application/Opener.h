// Hands a page, file or folder to the desktop.
#pragma once

#include <string>

namespace veltrix::gnustep {

// Starts `xdg-open` from the PATH with one argument and does not wait for it: false only if it
// cannot be started. It gets no descriptor of ours, the null device as its standard streams, and
// signals as they are by default. Any thread.
bool openWithDesktop(const std::string& target);

}  // namespace veltrix::gnustep
