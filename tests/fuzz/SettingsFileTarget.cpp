// Any bytes as an installation's settings file: the origin is its string, or nothing.
#include "fuzz/FuzzTarget.h"
#include "setup/PublicOrigin.h"
#include "support/TempFolder.h"

#include "common/Json.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace veltrix;
    static const test::TempFolder home;
    const std::string contents = test::expanded(test::asText(data, size));
    home.write("config/settings.json", contents);

    std::string expected;
    if (contents.size() <= 65'536) {
        const std::optional<Json> settings = parseJson(contents);
        if (settings && settings->object() != nullptr) {
            const auto member = settings->object()->find("DVR_PUBLIC_ORIGIN");
            const bool isText =
                member != settings->object()->end() && member->second.string() != nullptr;
            expected = isText ? *member->second.string() : "";
        }
    }
    test::require(publicOrigin(home.path()) == expected, "the origin of the settings");
    return 0;
}
