#include "gnustep/runtime/UnfinishedFiles.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <system_error>

namespace veltrix::gnustep {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kSuffixLength = 6;
constexpr std::chrono::minutes kLongestWritten{1};

bool isLetterOrDigit(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isReplacementOf(const std::string& name, const std::string& candidate) {
    return candidate.size() == name.size() + kSuffixLength && candidate.starts_with(name) &&
           std::all_of(candidate.end() - kSuffixLength, candidate.end(), isLetterOrDigit);
}

bool isOld(const fs::path& file) {
    std::error_code error;
    const auto written = fs::last_write_time(file, error);
    return !error && fs::file_time_type::clock::now() - written > kLongestWritten;
}

}  // namespace

void removeUnfinishedFiles(const std::string& folder, const std::string& name) {
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        const bool isFile = entry->symlink_status(error).type() == fs::file_type::regular;
        if (isFile && isReplacementOf(name, entry->path().filename().string()) &&
            isOld(entry->path())) {
            std::error_code ignored;
            fs::remove(entry->path(), ignored);
        }
    }
}

}  // namespace veltrix::gnustep
