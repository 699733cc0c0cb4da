// The way to the first-run process as a setup session sees it. Implemented by SetupIPC and, in
// tests, by a script of replies. Called on the main thread; answers there.
#pragma once

#include "common/Json.h"

#include <functional>
#include <string>

namespace veltrix {

class SetupChannel {
  public:
    virtual ~SetupChannel() = default;

    // Sends one request. The completion is called exactly once, later, on the main thread, with
    // the reply or, for whatever failed, with the failure reply.
    virtual void request(std::string action, Json::Object values,
                         std::function<void(const Reply&)> completion) = 0;

    // Shuts the first-run process down after everything requested so far. The completion is
    // called exactly once, later, on the main thread, when it has exited.
    virtual void close(std::function<void()> completion) = 0;
};

}  // namespace veltrix
