// bench-flood CHILD BYTES: measures how fast an action takes so many bytes from a script, and how
// fast `cat >/dev/null` takes them from the same one through the same kind of pipe. Its last line
// is "grown KILOBYTES": by how much the peak of its own memory has grown meanwhile.
#include "common/Environment.h"
#include "measure/Companion.h"
#include "measure/Measure.h"
#include "operator/ActionJob.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

using namespace veltrix;
using namespace veltrix::bench;

namespace {

// A number that one of the files of proc(5) has for this process.
long long own(const char* file, std::string_view wanted) {
    std::ifstream lines(file);
    for (std::string name; lines >> name;) {
        if (name == wanted) {
            long long number = 0;
            lines >> number;
            return number;
        }
    }
    giveUp(std::string("no ") + wanted.data() + " in " + file);
}

long long peakKilobytes() {
    return own("/proc/self/status", "VmHWM:");
}

// A whole action, back on the main thread. Its output is too long for a reply, but is all read.
bool drainAsAction(const ServeMainQueue& serve, const ActionJob& job) {
    const long long readBefore = own("/proc/self/io", "rchar:");
    bool done = false;
    bool refused = false;
    systemDispatcher().asyncOnGlobal(QualityOfService::userInitiated, [&] {
        const Reply reply = runActionJob(job, processEnvironment(), systemDispatcher());
        systemDispatcher().asyncOnMain([&, reply] {
            refused = reply == incompleteReply();
            done = true;
        });
    });
    serve([&] { return done; });
    return refused &&
           own("/proc/self/io", "rchar:") - readBefore >= std::stoll(job.arguments.back());
}

pid_t start(std::vector<std::string> command, int input, int output) {
    std::vector<std::string> variables = childEnvironment();
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input, 0);
    posix_spawn_file_actions_adddup2(&actions, output, 1);
    pid_t pid = -1;
    if (posix_spawnp(&pid, command.front().c_str(), &actions, nullptr, pointersTo(command).data(),
                     pointersTo(variables).data()) != 0) {
        giveUp("cannot start " + command.front());
    }
    posix_spawn_file_actions_destroy(&actions);
    return pid;
}

bool endsWell(pid_t pid) {
    int status = 0;
    return waitpid(pid, &status, 0) == pid && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

bool drainWithCat(const ActionJob& job) {
    const int null = open("/dev/null", O_RDWR | O_CLOEXEC);
    int ends[2];
    if (null < 0 || pipe2(ends, O_CLOEXEC) != 0) {
        return false;
    }
    std::vector<std::string> producer = job.arguments;
    producer.insert(producer.begin(), job.executable);
    const pid_t from = start(producer, null, ends[1]);
    const pid_t to = start({"cat"}, ends[0], null);
    close(ends[0]);
    close(ends[1]);
    close(null);
    const bool producedWell = endsWell(from);
    return endsWell(to) && producedWell;
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 3) {
        giveUp("usage: bench-flood CHILD BYTES");
    }
    const ServeMainQueue serve = plainMainLoop();
    // One small output too long for a reply, after which every thread and buffer exists.
    const ActionJob small{arguments[1], {"--produce", "100000"}, {}};
    if (!drainAsAction(serve, small)) {
        giveUp("no small output");
    }
    const long long before = peakKilobytes();
    const ActionJob job{arguments[1], {"--produce", arguments[2]}, {}};
    const int status = serveRounds({{"companion", [&] { return drainAsAction(serve, job); }},
                                    {"cat", [&] { return drainWithCat(job); }}});
    std::printf("grown %lld\n", peakKilobytes() - before);
    return status;
}
