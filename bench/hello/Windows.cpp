// windows TITLE PROGRAM [ARGUMENT...]: starts the program and tells, in microseconds since then,
// how it comes onto the screen, a line for each event:
//
//   started PID
//   window MICROSECONDS   its first window was mapped, whichever it is
//   titled MICROSECONDS   the window with this title was mapped
//   drawn MICROSECONDS    that window was painted for the last time before everything was quiet
//
// Then it waits for the end of its standard input, and ends the program. The display must be nobody
// else's. The server tells all of this as it happens; nothing is asked in a loop.
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <string_view>

#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#include <xcb/damage.h>
#include <xcb/xcb.h>

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kPatienceMilliseconds = 120000;
constexpr int kQuietMilliseconds = 300;
constexpr int kGraceMilliseconds = 2000;
// A blinking insertion point is no painting of the window.
constexpr std::uint32_t kLeastPainted = 100 * 100;

struct Free {
    void operator()(void* reply) const { std::free(reply); }
};
template <typename Reply>
using ReplyPtr = std::unique_ptr<Reply, Free>;

[[noreturn]] void fail(const char* what) {
    std::fprintf(stderr, "windows: %s\n", what);
    std::exit(EXIT_FAILURE);
}

class Watch {
  public:
    explicit Watch(std::string_view title)
        : title_(title), connection_(xcb_connect(nullptr, nullptr)) {
        if (xcb_connection_has_error(connection_) != 0) {
            fail("no display");
        }
        const xcb_query_extension_reply_t* const damage =
            xcb_get_extension_data(connection_, &xcb_damage_id);
        if (damage == nullptr || damage->present == 0) {
            fail("the display has no DAMAGE extension");
        }
        damageEvent_ = damage->first_event + XCB_DAMAGE_NOTIFY;
        const auto version = xcb_damage_query_version(connection_, XCB_DAMAGE_MAJOR_VERSION,
                                                      XCB_DAMAGE_MINOR_VERSION);
        ReplyPtr<xcb_damage_query_version_reply_t>(
            xcb_damage_query_version_reply(connection_, version, nullptr));
        root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
        select(root_, XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
        // Answered only when all that was asked for before has been done.
        const auto barrier = xcb_get_input_focus(connection_);
        ReplyPtr<xcb_get_input_focus_reply_t>(
            xcb_get_input_focus_reply(connection_, barrier, nullptr));
    }

    void begin() { began_ = Clock::now(); }

    [[nodiscard]] int descriptor() const { return xcb_get_file_descriptor(connection_); }
    [[nodiscard]] bool hasTitled() const { return titled_ != XCB_NONE; }

    void handleEvents() {
        const Clock::time_point now = Clock::now();
        while (const ReplyPtr<xcb_generic_event_t> event{xcb_poll_for_event(connection_)}) {
            handle(*event, now);
        }
        if (xcb_connection_has_error(connection_) != 0) {
            fail("the display went away");
        }
        xcb_flush(connection_);
    }

    void tellDrawn() const {
        if (!drawn_) {
            fail("the window was never painted");
        }
        tell("drawn", *drawn_);
    }

  private:
    void select(xcb_window_t window, std::uint32_t events) {
        xcb_change_window_attributes(connection_, window, XCB_CW_EVENT_MASK, &events);
    }

    void handle(const xcb_generic_event_t& event, Clock::time_point now) {
        const int type = event.response_type & 0x7f;
        if (type == XCB_MAP_NOTIFY) {
            mapped(reinterpret_cast<const xcb_map_notify_event_t&>(event).window, now);
        } else if (type == damageEvent_) {
            const auto& area = reinterpret_cast<const xcb_damage_notify_event_t&>(event).area;
            if (area.width * area.height >= kLeastPainted) {
                drawn_ = now;
            }
        }
    }

    void mapped(xcb_window_t window, Clock::time_point now) {
        if (!any_) {
            any_ = true;
            tell("window", now);
        }
        if (!hasTitled() && isTitled(window)) {
            titled_ = window;
            tell("titled", now);
            xcb_damage_create(connection_, xcb_generate_id(connection_), window,
                              XCB_DAMAGE_REPORT_LEVEL_RAW_RECTANGLES);
        }
    }

    [[nodiscard]] bool isTitled(xcb_window_t window) const {
        const auto cookie = xcb_get_property(connection_, 0, window, XCB_ATOM_WM_NAME,
                                             XCB_GET_PROPERTY_TYPE_ANY, 0, 64);
        const ReplyPtr<xcb_get_property_reply_t> reply(
            xcb_get_property_reply(connection_, cookie, nullptr));
        return reply &&
               std::string_view(
                   static_cast<const char*>(xcb_get_property_value(reply.get())),
                   static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))) == title_;
    }

    void tell(const char* what, Clock::time_point when) const {
        const auto passed = std::chrono::duration_cast<std::chrono::microseconds>(when - began_);
        std::printf("%s %lld\n", what, static_cast<long long>(passed.count()));
        std::fflush(stdout);
    }

    std::string_view title_;
    xcb_connection_t* connection_;
    int damageEvent_ = 0;
    xcb_window_t root_ = XCB_NONE;
    Clock::time_point began_;
    bool any_ = false;
    xcb_window_t titled_ = XCB_NONE;
    std::optional<Clock::time_point> drawn_;
};

pid_t start(char* const* command) {
    pid_t pid = 0;
    if (posix_spawn(&pid, command[0], nullptr, nullptr, command, environ) != 0) {
        fail("the program cannot be started");
    }
    return pid;
}

// Whether it has ended in time.
bool ended(pid_t pid, int milliseconds) {
    const int descriptor = static_cast<int>(syscall(SYS_pidfd_open, pid, 0));
    pollfd end{descriptor, POLLIN, 0};
    const bool done = descriptor >= 0 && poll(&end, 1, milliseconds) == 1;
    close(descriptor);
    return done;
}

void end(pid_t pid) {
    kill(pid, SIGTERM);
    if (!ended(pid, kGraceMilliseconds)) {
        kill(pid, SIGKILL);
    }
    waitpid(pid, nullptr, 0);
}

// Until standard input ends.
void watch(Watch& windows) {
    pollfd sources[] = {{STDIN_FILENO, POLLIN, 0}, {windows.descriptor(), POLLIN, 0}};
    for (bool told = false;;) {
        const int patience = told                  ? -1
                             : windows.hasTitled() ? kQuietMilliseconds
                                                   : kPatienceMilliseconds;
        const int ready = poll(sources, 2, patience);
        if (ready < 0 && errno != EINTR) {
            fail("poll");
        }
        if (sources[0].revents != 0) {
            return;
        }
        if (ready == 0 && !windows.hasTitled()) {
            std::fprintf(stderr, "windows: the window never came\n");
            return;
        }
        if (ready == 0) {
            told = true;
            windows.tellDrawn();
        }
        windows.handleEvents();
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        fail("usage: windows TITLE PROGRAM [ARGUMENT...]");
    }
    Watch windows(argv[1]);
    windows.begin();
    const pid_t pid = start(argv + 2);
    std::printf("started %d\n", pid);
    std::fflush(stdout);
    watch(windows);
    end(pid);
}
