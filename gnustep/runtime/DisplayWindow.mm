#include "gnustep/runtime/DisplayWindow.h"

namespace veltrix::gnustep {

std::uint32_t windowOnDisplay(NSWindow* window) {
    // An answer from the server, behind everything that still waited to be sent.
    (void)[NSEvent mouseLocation];
    return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>([window windowRef]));
}

}  // namespace veltrix::gnustep
