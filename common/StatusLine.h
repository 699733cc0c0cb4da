// A window's status line: the one place where an outcome is told. Main thread only.
#pragma once

#import <AppKit/AppKit.h>

#include <string_view>

namespace veltrix {

// A wrapping label that shows the sentence.
[[nodiscard]] NSTextField* makeStatusLine(std::string_view sentence);

// Shows another sentence and has assistive technology read it out.
void tell(NSTextField* statusLine, std::string_view sentence);

}  // namespace veltrix
