#include "common/Text.h"

#include "common/RetainPtr.h"

namespace veltrix {

NSString* toNSString(std::string_view utf8) {
    return adoptNS([[NSString alloc] initWithBytes:utf8.data()
                                            length:utf8.size()
                                          encoding:NSUTF8StringEncoding])
        .autorelease();
}

std::string toUtf8(NSString* string) {
    NSData* const data = [string dataUsingEncoding:NSUTF8StringEncoding allowLossyConversion:YES];
    if (data == nil) {
        return {};
    }
    return {static_cast<const char*>([data bytes]), static_cast<std::size_t>([data length])};
}

}  // namespace veltrix
