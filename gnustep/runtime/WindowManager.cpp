#include "gnustep/runtime/WindowManager.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>

#include <xcb/xcb.h>

namespace veltrix::gnustep {
namespace {

struct Free {
    void operator()(void* reply) const { std::free(reply); }
};
template <typename Reply>
using ReplyPtr = std::unique_ptr<Reply, Free>;

class Display {
  public:
    Display() : connection_(xcb_connect(nullptr, &screenNumber_)) {}
    ~Display() { xcb_disconnect(connection_); }
    Display(const Display&) = delete;
    Display& operator=(const Display&) = delete;

    explicit operator bool() const { return xcb_connection_has_error(connection_) == 0; }
    [[nodiscard]] xcb_connection_t* get() const { return connection_; }

    [[nodiscard]] xcb_window_t root() const {
        auto screen = xcb_setup_roots_iterator(xcb_get_setup(connection_));
        for (int i = 0; i < screenNumber_ && screen.rem > 1; ++i)
            xcb_screen_next(&screen);
        return screen.data->root;
    }

    // XCB_ATOM_NONE if nobody has used the name yet.
    [[nodiscard]] xcb_atom_t atom(std::string_view name) const {
        const auto cookie =
            xcb_intern_atom(connection_, 1, static_cast<std::uint16_t>(name.size()), name.data());
        const ReplyPtr<xcb_intern_atom_reply_t> reply(
            xcb_intern_atom_reply(connection_, cookie, nullptr));
        return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
    }

    // The window that a property names; XCB_NONE if there is none.
    [[nodiscard]] xcb_window_t windowNamedBy(xcb_window_t owner, xcb_atom_t property) const {
        const auto cookie =
            xcb_get_property(connection_, 0, owner, property, XCB_ATOM_WINDOW, 0, 1);
        const ReplyPtr<xcb_get_property_reply_t> reply(
            xcb_get_property_reply(connection_, cookie, nullptr));
        if (!reply || reply->format != 32 || xcb_get_property_value_length(reply.get()) != 4)
            return XCB_NONE;
        xcb_window_t window = XCB_NONE;
        std::memcpy(&window, xcb_get_property_value(reply.get()), sizeof window);
        return window;
    }

  private:
    int screenNumber_ = 0;
    xcb_connection_t* connection_;
};

}  // namespace

bool isWindowManagerRunning() {
    const Display display;
    if (!display)
        return false;
    const xcb_atom_t property = display.atom("_NET_SUPPORTING_WM_CHECK");
    if (property == XCB_ATOM_NONE)
        return false;
    // The property outlives a window manager that crashed; the window it names does not, and a
    // living one bears the same property.
    const xcb_window_t check = display.windowNamedBy(display.root(), property);
    return check != XCB_NONE && display.windowNamedBy(check, property) == check;
}

void reserveTopOfScreen(std::uint32_t window, std::uint32_t height, std::uint32_t screenWidth) {
    const Display display;
    if (!display)
        return;
    const xcb_atom_t property = display.atom("_NET_WM_STRUT_PARTIAL");
    if (property == XCB_ATOM_NONE)
        return;
    // Left, right, top, bottom, then where each of these begins and ends.
    const std::uint32_t strut[12] = {0, 0, height, 0, 0, 0, 0, 0, 0, screenWidth - 1, 0, 0};
    xcb_change_property(display.get(), XCB_PROP_MODE_REPLACE, window, property, XCB_ATOM_CARDINAL,
                        32, 12, strut);
    xcb_flush(display.get());
}

void activateWindow(std::uint32_t window) {
    const Display display;
    if (!display)
        return;
    const xcb_atom_t request = display.atom("_NET_ACTIVE_WINDOW");
    if (request == XCB_ATOM_NONE)
        return;
    constexpr std::uint32_t kOnBehalfOfThePerson = 2;
    xcb_client_message_event_t message = {};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = request;
    message.data.data32[0] = kOnBehalfOfThePerson;
    message.data.data32[1] = XCB_CURRENT_TIME;
    xcb_send_event(display.get(), 0, display.root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&message));
    // GNUstep wants to take the keyboard itself, but ignores the first offer for a window it has
    // just shown.
    xcb_set_input_focus(display.get(), XCB_INPUT_FOCUS_PARENT, window, XCB_CURRENT_TIME);
    xcb_flush(display.get());
}

}  // namespace veltrix::gnustep
