#include "app/DesktopEnvironment.h"

#include "app/UserDefaultsStore.h"
#include "common/Environment.h"
#include "common/ResourceFolder.h"
#include "common/Text.h"

#import <AppKit/AppKit.h>

namespace veltrix {
namespace {

std::vector<std::string> processArguments() {
    std::vector<std::string> arguments;
    for (NSString* argument in [[NSProcessInfo processInfo] arguments]) {
        arguments.push_back(toUtf8(argument));
    }
    return arguments;
}

}  // namespace

DesktopEnvironment systemEnvironment() {
    return {std::make_shared<UserDefaultsStore>(),
            toUtf8([[[NSFileManager defaultManager] homeDirectoryForCurrentUser] path]),
            processArguments(),
            OperatorServices{systemDispatcher(), resourceFolder, processEnvironment}};
}

}  // namespace veltrix
