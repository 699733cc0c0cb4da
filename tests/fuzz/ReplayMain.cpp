// Feeds a target the files it is given, or those in the folders it is given: the corpus of each
// target runs with the ordinary tests, without a fuzzer.
#include "fuzz/FuzzTarget.h"
#include "support/TempFolder.h"

#include <filesystem>
#include <vector>

namespace {

void replay(const std::filesystem::path& file) {
    const std::string contents = veltrix::test::contentsOf(file.string());
    const std::vector<std::uint8_t> bytes(contents.begin(), contents.end());
    std::printf("%s\n", file.filename().c_str());
    std::fflush(stdout);
    LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
}

}  // namespace

int main(int argc, char** argv) {
    int inputs = 0;
    for (int index = 1; index < argc; ++index) {
        if (!std::filesystem::is_directory(argv[index])) {
            replay(argv[index]);
            ++inputs;
            continue;
        }
        for (const auto& entry : std::filesystem::directory_iterator(argv[index])) {
            replay(entry.path());
            ++inputs;
        }
    }
    std::printf("%d inputs\n", inputs);
    return inputs > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
