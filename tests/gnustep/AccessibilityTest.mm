#import <AppKit/AppKit.h>

#include "common/RetainPtr.h"

#include <gtest/gtest.h>

using veltrix::adoptNS;
using veltrix::RetainPtr;

@interface AnnouncementLog : NSObject {
  @public
    RetainPtr<NSNotification> _last;
}
@end

@implementation AnnouncementLog
- (void)announced:(NSNotification*)notification {
    _last = notification;
}
@end

namespace {

TEST(Accessibility, ALabelGivenIsTheLabel) {
    NSTextField* const field = [NSTextField textFieldWithString:@""];
    EXPECT_FALSE([field accessibilityLabel]);
    [field setAccessibilityLabel:@"Installation folder"];
    EXPECT_TRUE([[field accessibilityLabel] isEqualToString:@"Installation folder"]);
}

TEST(Accessibility, AButtonIsCalledByItsTitleElseByItsImage) {
    NSButton* const titled = [NSButton buttonWithTitle:@"Save" target:nil action:nil];
    EXPECT_TRUE([[titled accessibilityLabel] isEqualToString:@"Save"]);
    NSButton* const pictured = [NSButton buttonWithTitle:@"" target:nil action:nil];
    [pictured setImage:[NSImage imageWithSystemSymbolName:@"film"
                                 accessibilityDescription:@"Recordings"]];
    EXPECT_TRUE([[pictured accessibilityLabel] isEqualToString:@"Recordings"]);
}

TEST(Accessibility, AnnouncementsAreSeenByObservers) {
    const RetainPtr<AnnouncementLog> log = adoptNS([[AnnouncementLog alloc] init]);
    [[NSNotificationCenter defaultCenter]
        addObserver:log
           selector:@selector(announced:)
               name:NSAccessibilityAnnouncementRequestedNotification
             object:nil];
    NSAccessibilityPostNotificationWithUserInfo(NSApp,
                                                NSAccessibilityAnnouncementRequestedNotification,
                                                @{NSAccessibilityAnnouncementKey : @"Working..."});
    [[NSNotificationCenter defaultCenter] removeObserver:log];
    const RetainPtr<NSNotification>& last = log.get()->_last;
    ASSERT_TRUE(last);
    EXPECT_TRUE([[[last userInfo] objectForKey:NSAccessibilityAnnouncementKey]
        isEqualToString:@"Working..."]);
    EXPECT_TRUE([last object] == NSApp);
}

}  // namespace
