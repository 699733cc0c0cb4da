// RFC 8259 once more, as plainly as it can be read: decides which bytes are JSON, with the choices
// that common/Json.h makes, and builds nothing. A pure function.
#pragma once

#include <string_view>

namespace veltrix::test {

[[nodiscard]] bool isJson(std::string_view bytes);

}  // namespace veltrix::test
