// How tall text is. Main thread only.
#pragma once

#import <AppKit/AppKit.h>

namespace veltrix::gnustep {

// The height of one line as the text system lays it out, in whole points.
CGFloat lineHeight(NSFont* font);

}  // namespace veltrix::gnustep
