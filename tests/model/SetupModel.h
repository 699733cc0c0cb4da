// What a setup session is expected to be like after everything that is done to it, told
// independently of how it works. One thread.
#pragma once

#include "model/Replies.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace veltrix::test {

struct SetupModel {
    enum class State { idle, requesting, closing, closed };

    State state = State::idle;
    bool paired = false;
    bool controlsEnabled = true;
    bool sessionEnded = false;
    std::string password;
    std::string status;
    std::size_t requests = 0;  // sent to the channel so far
    std::size_t closings = 0;  // asked of the channel so far

    void typed(std::string text) { password = std::move(text); }
    void pressed(std::string_view action, bool trustProxy);
    void answered(std::string_view action, const SetupReply& reply);
    // Whether the window may close now.
    [[nodiscard]] bool closeWanted();
    void shutDown();
};

}  // namespace veltrix::test
