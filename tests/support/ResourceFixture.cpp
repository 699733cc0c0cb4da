#include "support/ResourceFixture.h"

#include "common/Pipe.h"
#include "common/ResourceFolder.h"

#include <filesystem>

namespace veltrix::test {

std::string fixtureChild() {
    return VELTRIX_CHILD;
}

ResourceFixture::ResourceFixture() : folder_(temporary_.makeFolder("Resources")) {
    ignoreBrokenPipes();
    temporary_.makeFolder("Resources/desktop");
    temporary_.makeFolder("scratch");
    std::filesystem::create_directories(std::filesystem::path(node()).parent_path());
    std::filesystem::create_symlink(fixtureChild(), node());
}

std::function<std::string()> ResourceFixture::asFunction() const {
    return [folder = folder_] { return folder; };
}

std::string ResourceFixture::node() const {
    return resourcePath(folder_, kBundledRuntime);
}

std::string ResourceFixture::script(std::string_view relative, std::string_view steps) const {
    return temporary_.write("Resources/" + std::string(relative), steps);
}

std::string ResourceFixture::scratch(std::string_view name) const {
    return temporary_.path("scratch/" + std::string(name));
}

}  // namespace veltrix::test
