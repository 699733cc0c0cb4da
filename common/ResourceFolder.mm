#include "common/ResourceFolder.h"

#include "common/Fatal.h"
#include "common/Files.h"
#include "common/Text.h"

#import <Foundation/Foundation.h>

namespace veltrix {

std::string resourceFolder() {
    @autoreleasepool {
        std::string path = toUtf8([[[NSBundle mainBundle] resourceURL] path]);
        // A bundle class may name the folder where it ought to be without looking.
        if (!isFolder(path)) {
            fatalProgrammingError("the bundle has no resource folder");
        }
        return path;
    }
}

}  // namespace veltrix
