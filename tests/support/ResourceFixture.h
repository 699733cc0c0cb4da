// A resource folder of a test's own, with the fixture child in the place of the bundled Node and
// with scripts in its language (see tests/child/Child.cpp), and next to it a folder for whatever
// scripts leave behind. Making one also ignores broken pipes, as the program does at its entry.
#pragma once

#include "support/TempFolder.h"

#include <functional>
#include <string>
#include <string_view>

namespace veltrix::test {

// The fixture child itself.
[[nodiscard]] std::string fixtureChild();

class ResourceFixture {
  public:
    ResourceFixture();

    [[nodiscard]] const std::string& folder() const { return folder_; }
    [[nodiscard]] std::function<std::string()> asFunction() const;

    // The bundled runtime: the fixture child.
    [[nodiscard]] std::string node() const;

    // Writes the script, relative to the resource folder, and returns its path.
    std::string script(std::string_view relative, std::string_view steps) const;

    // A path outside the resource folder; the file `name` in it need not exist.
    [[nodiscard]] std::string scratch(std::string_view name) const;

  private:
    TempFolder temporary_;
    std::string folder_;
};

}  // namespace veltrix::test
