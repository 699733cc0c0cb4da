// What every fuzz target has in common. A target is one function that is given any bytes and holds
// the code to properties that must be true of all of them; libFuzzer looks for bytes that break
// one, and ReplayMain.cpp feeds it those in corpus/. One thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace veltrix::test {

// Ends the program, which is how a target says that it has found something.
inline void require(bool property, const char* what) {
    if (!property) {
        std::fprintf(stderr, "broken: %s\n", what);
        std::abort();
    }
}

inline std::string_view asText(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

// Small inputs for large limits: every byte `kManySpaces` stands for 1,024 spaces.
inline constexpr char kManySpaces = '\x02';

inline std::string expanded(std::string_view input) {
    std::string text;
    for (const char byte : input) {
        byte == kManySpaces ? text.append(1024, ' ') : text.append(1, byte);
    }
    return text;
}

}  // namespace veltrix::test
