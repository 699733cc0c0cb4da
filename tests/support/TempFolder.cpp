#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace veltrix::test {

TempFolder::TempFolder() {
    std::string name = std::filesystem::canonical(std::filesystem::temp_directory_path()).string();
    name += "/veltrix-test-XXXXXX";
    if (::mkdtemp(name.data()) == nullptr) {
        ADD_FAILURE() << "no temporary folder at " << name;
    }
    path_ = name;
}

TempFolder::~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::string TempFolder::path(std::string_view relative) const {
    return path_ + "/" + std::string(relative);
}

std::string TempFolder::write(std::string_view relative, std::string_view contents,
                              int mode) const {
    const std::string file = path(relative);
    std::filesystem::create_directories(std::filesystem::path(file).parent_path());
    std::ofstream(file, std::ios::binary) << contents;
    EXPECT_EQ(::chmod(file.c_str(), static_cast<mode_t>(mode)), 0) << file;
    return file;
}

std::string TempFolder::makeFolder(std::string_view relative) const {
    const std::string folder = path(relative);
    std::filesystem::create_directories(folder);
    return folder;
}

std::string contentsOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

}  // namespace veltrix::test
