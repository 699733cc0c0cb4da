#include "tests/tour/observer/Sight.h"

#include <nlohmann/json.hpp>

namespace veltrix::tour {

NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(Frame, x, y, width, height)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(SeenView, kind, title, text, label, action, toolTip, enabled, on,
                                   frame)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(SeenItem, title, enabled, frame)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(SeenWindow, title, key, modal, frame, views, items)

std::string answerLine(const Sight& sight) {
    using Handler = nlohmann::json::error_handler_t;
    return nlohmann::json(sight).dump(-1, ' ', false, Handler::replace) + '\n';
}

}  // namespace veltrix::tour
