#include "endurance/Usage.h"

#include "support/Processes.h"

#include <libproc.h>
#include <unistd.h>

namespace veltrix::test {

// proc_pidinfo, libproc.h.
Usage usage() {
    Usage now;
    now.descriptors = openDescriptors();
    proc_taskinfo info{};
    if (::proc_pidinfo(::getpid(), PROC_PIDTASKINFO, 0, &info, sizeof info) == sizeof info) {
        now.threads = static_cast<std::size_t>(info.pti_threadnum);
        now.memory = info.pti_resident_size;
    }
    return now;
}

}  // namespace veltrix::test
