// bench-run-loop CHILD: the companion's way to a script with the main queue where the application
// has it, in AppKit's run loop. No window, no display.
#include "measure/Companion.h"
#include "measure/Measure.h"

#include "common/Dispatch.h"
#include "common/Pipe.h"

#import <AppKit/AppKit.h>

using namespace veltrix::bench;

namespace {

ServeMainQueue runLoop() {
    veltrix::attachMainQueueToRunLoop();
    return [](const std::function<bool()>& done) {
        while (!done()) {
            @autoreleasepool {
                [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode
                                         beforeDate:[NSDate distantFuture]];
            }
        }
    };
}

}  // namespace

int main(int count, char** arguments) {
    @autoreleasepool {
        if (count != 2) {
            giveUp("usage: bench-run-loop CHILD");
        }
        Companion companion(arguments[1], runLoop());
        return serveRounds({{"companion", [&] { return companion.run(); }}});
    }
}
