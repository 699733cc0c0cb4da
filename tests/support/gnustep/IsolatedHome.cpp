#include "support/gnustep/IsolatedHome.h"

#include <cstdlib>
#include <filesystem>

namespace veltrix::test {

IsolatedHome::IsolatedHome() {
    // GNUstep takes the home from the account, not from $HOME; its configuration file can say
    // otherwise.
    const std::string configuration = folder_.write(
        "gnustep.conf", "GNUSTEP_USER_DEFAULTS_DIR=" + folder_.path("Defaults") +
                            "\nGNUSTEP_USER_DIR_LIBRARY=" + folder_.path("Library") + "\n");
    setenv("GNUSTEP_CONFIG_FILE", configuration.c_str(), 1);
    setenv("HOME", folder_.makeFolder("home").c_str(), 1);
    const std::string runtime = folder_.makeFolder("run");
    std::filesystem::permissions(runtime, std::filesystem::perms::owner_all);
    setenv("XDG_RUNTIME_DIR", runtime.c_str(), 1);
}

}  // namespace veltrix::test
