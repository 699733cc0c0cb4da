// Strings across the border between the C++ core (UTF-8 bytes) and Foundation. Objective-C++ only.
#pragma once

#import <Foundation/Foundation.h>

#include <string>
#include <string_view>

namespace veltrix {

// Autoreleased; nil when the bytes are not valid UTF-8.
[[nodiscard]] NSString* toNSString(std::string_view utf8);

// Empty for nil. Characters that have no UTF-8 form (halves of a surrogate pair) are replaced.
[[nodiscard]] std::string toUtf8(NSString* string);

}  // namespace veltrix
