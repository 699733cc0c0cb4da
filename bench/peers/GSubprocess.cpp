// GLib's GSubprocess.
#include "measure/Measure.h"

#include <gio/gio.h>

using namespace veltrix::bench;

int main(int, char** arguments) {
    std::vector<std::string> strings = childArguments();
    strings.insert(strings.begin(), arguments[1]);
    std::vector<char*> command = pointersTo(strings);
    std::vector<std::string> variables = childEnvironment();
    std::vector<char*> environment = pointersTo(variables);
    GSubprocessLauncher* const launcher = g_subprocess_launcher_new(static_cast<GSubprocessFlags>(
        G_SUBPROCESS_FLAGS_STDIN_PIPE | G_SUBPROCESS_FLAGS_STDOUT_PIPE |
        G_SUBPROCESS_FLAGS_STDERR_SILENCE));
    g_subprocess_launcher_set_environ(launcher, environment.data());
    return serveRounds({{"peer", [&] {
                             GSubprocess* process =
                                 g_subprocess_launcher_spawnv(launcher, command.data(), nullptr);
                             char* output = nullptr;
                             const bool good =
                                 process != nullptr &&
                                 g_subprocess_communicate_utf8(process, "", nullptr, &output,
                                                               nullptr, nullptr) &&
                                 isExpectedReply(output);
                             g_free(output);
                             g_clear_object(&process);
                             return good;
                         }}});
}
