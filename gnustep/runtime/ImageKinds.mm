// Which kinds of picture the library knows: those that it decodes by itself. ImageMagick would add
// a good 240 endings; to list them a hundred decoders and what they depend on are loaded, and every
// picture that is looked for by its name is then looked for under each ending in turn.
#include "gnustep/runtime/SetUp.h"

#import <AppKit/AppKit.h>

namespace veltrix::gnustep {

void leaveOutImageMagick() {
    if (const Class decoder = NSClassFromString(@"GSImageMagickImageRep"))
        [NSImageRep unregisterImageRepClass:decoder];
}

}  // namespace veltrix::gnustep
