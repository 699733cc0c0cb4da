#include "common/ValidPath.h"

#include <algorithm>

namespace veltrix {

bool validPath(std::string_view path) {
    const bool absolute = path.starts_with('/') || path.starts_with('~');
    // Bytes of multi-byte UTF-8 sequences are all above 0x7F, so bytes can be tested one by one.
    return absolute && std::none_of(path.begin(), path.end(), [](char byte) {
               const auto value = static_cast<unsigned char>(byte);
               return value < 0x20 || value == 0x7F || byte == '"';
           });
}

}  // namespace veltrix
