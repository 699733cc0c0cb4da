#include "app/SingleInstance.h"

namespace veltrix {

std::optional<std::size_t> otherInstance(pid_t own, std::span<const pid_t> running) {
    for (std::size_t i = 0; i < running.size(); ++i) {
        if (running[i] != own) {
            return i;
        }
    }
    return std::nullopt;
}

}  // namespace veltrix
