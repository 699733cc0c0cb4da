#include "setup/PublicOrigin.h"

#include "common/Files.h"
#include "common/Json.h"

namespace veltrix {

std::string publicOrigin(const std::string& home) {
    const std::optional<std::string> text =
        readFile(home + "/config/settings.json", kSettingsFileLimit);
    const std::optional<Json::Object> settings = text ? parseJsonObject(*text) : std::nullopt;
    const std::string* origin = settings ? stringMember(*settings, "DVR_PUBLIC_ORIGIN") : nullptr;
    return origin != nullptr ? *origin : std::string();
}

}  // namespace veltrix
