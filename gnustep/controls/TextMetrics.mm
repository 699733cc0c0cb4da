#include "gnustep/controls/TextMetrics.h"

#include <cmath>

namespace veltrix::gnustep {

CGFloat lineHeight(NSFont* font) {
    return std::ceil([@"X" sizeWithAttributes:@{NSFontAttributeName : font}].height);
}

}  // namespace veltrix::gnustep
