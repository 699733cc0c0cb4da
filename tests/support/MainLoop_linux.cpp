#include "common/MainQueue_linux.h"
#include "support/WaitFor.h"

namespace veltrix::test {

void serveMainQueue() {
    drainMainQueue();
}

}  // namespace veltrix::test
