#include "support/WaitFor.h"

#include <CoreFoundation/CoreFoundation.h>

namespace veltrix::test {

void serveMainQueue() {
    CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, true);
}

}  // namespace veltrix::test
