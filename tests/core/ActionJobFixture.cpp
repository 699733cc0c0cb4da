#include "core/ActionJobFixture.h"

#include <fstream>

namespace veltrix::test {

void ActionJobTest::touch(std::string_view name) const {
    std::ofstream(path(name)).flush();
}

Reply startedReply() {
    return {{"ok", Json(true)}, {"code", Json("started")}};
}

}  // namespace veltrix::test
