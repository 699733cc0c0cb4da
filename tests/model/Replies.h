// Replies as scripts might send them, in every shape, each with what it ought to mean: every
// ingredient is a row of a table that says by hand whether it counts. One thread.
#pragma once

#include "common/Json.h"
#include "model/Choices.h"

#include <optional>
#include <string>

namespace veltrix::test {

struct OperatorReply {
    Reply reply;
    std::string sentence;  // what its code says
    bool ok = false;
    std::optional<std::string> node;  // these three only if they count
    std::optional<std::string> configurationPath;
    std::optional<std::string> url;
};

[[nodiscard]] OperatorReply anyOperatorReply(Choices& choices);

struct SetupReply {
    Reply reply;
    std::string sentence;
    bool pairs = false;
    bool configuresLogin = false;
};

[[nodiscard]] SetupReply anySetupReply(Choices& choices);

}  // namespace veltrix::test
