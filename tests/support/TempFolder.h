// A folder of a test's own, removed with everything in it when the test ends. Any thread.
#pragma once

#include <string>
#include <string_view>

namespace veltrix::test {

class TempFolder {
  public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    // Absolute, without symbolic links and without a trailing slash.
    [[nodiscard]] const std::string& path() const { return path_; }
    [[nodiscard]] std::string path(std::string_view relative) const;

    // Creates or replaces a file, and the folders above it, and returns its path.
    std::string write(std::string_view relative, std::string_view contents, int mode = 0600) const;
    std::string makeFolder(std::string_view relative) const;

  private:
    std::string path_;
};

// Empty if the file cannot be read.
[[nodiscard]] std::string contentsOf(const std::string& path);

}  // namespace veltrix::test
