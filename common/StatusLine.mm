#include "common/StatusLine.h"

#include "common/Text.h"

namespace veltrix {

NSTextField* makeStatusLine(std::string_view sentence) {
    NSTextField* const line = [NSTextField wrappingLabelWithString:toNSString(sentence)];
    [line setAccessibilityLabel:@"Status"];
    return line;
}

void tell(NSTextField* statusLine, std::string_view sentence) {
    NSString* const text = toNSString(sentence);
    [statusLine setStringValue:text];
    if ([statusLine window] == nil) {
        return;
    }
    NSAccessibilityPostNotificationWithUserInfo(
        [statusLine window], NSAccessibilityAnnouncementRequestedNotification, @{
            NSAccessibilityAnnouncementKey : text,
            NSAccessibilityPriorityKey : @(NSAccessibilityPriorityHigh)
        });
}

}  // namespace veltrix
