// Puts the look in place.
#include "gnustep/runtime/SetUp.h"
#include "gnustep/theme/LightTheme.h"

#include "common/RetainPtr.h"

namespace veltrix::gnustep {
void installLook() {
    [GSTheme setTheme:adoptNS([[VeltrixLightTheme alloc] initWithBundle:nil]).get()];
    replaceStockImages();
}

}  // namespace veltrix::gnustep
