#include "app/DesktopSettings.h"

#include "common/Files.h"
#include "common/ValidPath.h"

namespace veltrix {
namespace {

std::string joined(std::string folder, std::string_view component) {
    if (!folder.ends_with('/')) {
        folder += '/';
    }
    return folder.append(component);
}

}  // namespace

InitialFields loadFields(const SettingsStore& store, const std::string& userHome,
                         const std::string& bundledRuntime) {
    InitialFields fields;
    fields.home = store.read(kInstallationHomeKey).value_or(joined(userHome, kDefaultInstallation));
    fields.node = store.read(kNodeExecutableKey).value_or(std::string(kDefaultNode));
    // Plain concatenation, also when the folder ends in a slash: what is typed is what is used.
    if (!fileExists(fields.home + "/installation.json") && isExecutableFile(bundledRuntime)) {
        fields.node = bundledRuntime;
    }
    fields.storage = fields.home + "/data";
    return fields;
}

bool storeSettings(SettingsStore& store, const std::string& home, const std::string& node) {
    if (!validPath(home) || !validPath(node) || !isExecutableFile(node)) {
        return false;
    }
    store.write(kInstallationHomeKey, home);
    store.write(kNodeExecutableKey, node);
    store.flush();
    return true;
}

}  // namespace veltrix
