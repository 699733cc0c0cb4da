#include "support/gnustep/Pointer.h"

#include <cstdint>
#include <cstdlib>

#include <xcb/xcb.h>

namespace veltrix::test {

void movePointer(int x, int y) {
    xcb_connection_t* const connection = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(connection) == 0) {
        const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
        xcb_warp_pointer(connection, XCB_NONE, root, 0, 0, 0, 0, static_cast<std::int16_t>(x),
                         static_cast<std::int16_t>(y));
        // A round trip, after which the server has done it.
        std::free(
            xcb_query_pointer_reply(connection, xcb_query_pointer(connection, root), nullptr));
    }
    xcb_disconnect(connection);
}

}  // namespace veltrix::test
