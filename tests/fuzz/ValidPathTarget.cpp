// Any text as a path, against the rule read byte by byte.
#include "common/ValidPath.h"
#include "fuzz/FuzzTarget.h"

#include <array>

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::array<bool, 256> allowed = [] {
        std::array<bool, 256> table{};
        for (std::size_t value = 0; value < table.size(); ++value) {
            table[value] = value >= 0x20 && value != 0x7F && value != '"';
        }
        return table;
    }();
    bool expected = size > 0 && (data[0] == '/' || data[0] == '~');
    for (std::size_t at = 0; at < size; ++at) {
        expected = expected && allowed[data[at]];
    }
    veltrix::test::require(veltrix::validPath(veltrix::test::asText(data, size)) == expected,
                           "which paths are valid");
    return 0;
}
