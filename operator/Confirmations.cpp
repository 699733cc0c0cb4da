#include "operator/Confirmations.h"

#include <array>
#include <cstddef>

namespace veltrix {
namespace {

constexpr std::string_view kUpdateInformation =
    "Stop DVR and close account setup first. Application/runtime files may be replaced; "
    "configuration and recordings are preserved. No service starts automatically.";

// In the order of Question.
constexpr std::array<Confirmation, 5> kConfirmations{{
    {"Install DVR for this account?",
     "Bundled runtime and server files will be installed. Existing installations are not "
     "replaced. The service stays stopped. HTTPS proxy and account authorization are separate.",
     "Cancel", "Install"},
    {"Start DVR?",
     "DVR listens on all network interfaces at port 3000. Its configured HTTPS gateway also "
     "starts when present. No firewall or router rules will be changed.",
     "Cancel", "Start"},
    {"Stop DVR?", "Active recordings may be interrupted. Saved recordings are retained.",
     "Keep Running", "Stop DVR"},
    {"Update DVR?", kUpdateInformation, "Cancel", "Continue"},
    {"Repair Interrupted Update?", kUpdateInformation, "Cancel", "Continue"},
}};

}  // namespace

const Confirmation& confirmation(Question question) {
    return kConfirmations.at(static_cast<std::size_t>(question));
}

}  // namespace veltrix
