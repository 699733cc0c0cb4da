#include "measure/OtherThread.h"

#include "measure/Measure.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cstdint>
#include <utility>

namespace veltrix::bench {
namespace {

void signal(int event) {
    const std::uint64_t one = 1;
    if (write(event, &one, sizeof one) != sizeof one) {
        giveUp("cannot wake a thread");
    }
}

void await(int event) {
    std::uint64_t count = 0;
    while (read(event, &count, sizeof count) != sizeof count) {
    }
}

}  // namespace

OtherThread::OtherThread(std::function<bool()> task)
    : task_(std::move(task)), wanted_(eventfd(0, EFD_CLOEXEC)), done_(eventfd(0, EFD_CLOEXEC)),
      thread_([this] { serve(); }) {}

OtherThread::~OtherThread() {
    ending_ = true;
    signal(wanted_);
    thread_.join();
    close(wanted_);
    close(done_);
}

bool OtherThread::run() {
    signal(wanted_);
    await(done_);
    return result_;
}

void OtherThread::serve() {
    for (await(wanted_); !ending_; await(wanted_)) {
        result_ = task_();
        signal(done_);
    }
}

}  // namespace veltrix::bench
