// The way in: loaded into the program ahead of its start (LD_PRELOAD), this module listens on a
// Unix socket and answers every line it gets with what can be seen on the program's windows at that
// moment. It can be asked nothing else, and it can do nothing.
//
// The socket's path is in VELTRIX_TOUR_SOCKET; without it the module does nothing at all. Nobody
// may connect before the program shows its first window: a thread other than the main one must not
// be the first to wake Foundation.
#include "tests/tour/observer/Sight.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>

#include <pthread.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

constexpr const char* kSocketVariable = "VELTRIX_TOUR_SOCKET";

int listenAt(const std::string& path) {
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path)
        return -1;
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    const int listening = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (listening >= 0 &&
        bind(listening, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
        listen(listening, 1) == 0)
        return listening;
    return -1;
}

bool sendAll(int connection, const std::string& text) {
    std::size_t sent = 0;
    while (sent < text.size()) {
        const ssize_t count =
            send(connection, text.data() + sent, text.size() - sent, MSG_NOSIGNAL);
        if (count < 0 && errno != EINTR)
            return false;
        sent += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    return true;
}

void answer(int connection) {
    char byte = 0;
    for (;;) {
        const ssize_t count = recv(connection, &byte, 1, 0);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return;
        if (byte == '\n' &&
            !sendAll(connection, veltrix::tour::answerLine(veltrix::tour::lookFromOutside())))
            return;
    }
}

void serve(int listening) {
    for (;;) {
        const int connection = accept4(listening, nullptr, nullptr, SOCK_CLOEXEC);
        if (connection < 0)
            continue;
        answer(connection);
        close(connection);
    }
}

__attribute__((constructor)) void begin() {
    const char* const path = std::getenv(kSocketVariable);
    if (path == nullptr)
        return;
    const int listening = listenAt(path);
    // For this process alone: what the program starts is started as if nobody looked.
    unsetenv(kSocketVariable);
    unsetenv("LD_PRELOAD");
    // GNUstep's own helper processes get the environment as it was before. The program was first.
    if (listening < 0)
        return;
    // Signals are for the program's own threads.
    sigset_t everything;
    sigset_t before;
    sigfillset(&everything);
    pthread_sigmask(SIG_SETMASK, &everything, &before);
    std::thread(serve, listening).detach();
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

}  // namespace
