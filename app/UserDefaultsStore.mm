#include "app/UserDefaultsStore.h"

#include "common/Text.h"

#import <Foundation/Foundation.h>

namespace veltrix {

std::optional<std::string> UserDefaultsStore::read(std::string_view key) const {
    NSString* const value = [[NSUserDefaults standardUserDefaults] stringForKey:toNSString(key)];
    return value == nil ? std::nullopt : std::optional(toUtf8(value));
}

void UserDefaultsStore::write(std::string_view key, std::string_view value) {
    [[NSUserDefaults standardUserDefaults] setObject:toNSString(value) forKey:toNSString(key)];
}

// The system writes by itself too, but GNUstep only every half minute and when the program quits.
void UserDefaultsStore::flush() {
    [[NSUserDefaults standardUserDefaults] synchronize];
}

}  // namespace veltrix
