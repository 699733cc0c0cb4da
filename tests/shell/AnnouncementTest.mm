// What is announced to assistive technology. Seen as notifications of the program itself, which the
// AppKit of macOS does not send: for GNUstep only.
#include "shell/ShellTest.h"

#include "common/StatusLine.h"
#include "common/Text.h"
#include "support/AppKitDriver.h"

using namespace veltrix;
using namespace veltrix::test;

@interface AnnouncementListener : NSObject {
  @public
    std::vector<std::string> _heard;
    std::vector<id> _from;
}
- (void)hear:(NSNotification*)notification;
@end

@implementation AnnouncementListener

- (instancetype)init {
    self = [super init];
    [[NSNotificationCenter defaultCenter]
        addObserver:self
           selector:@selector(hear:)
               name:NSAccessibilityAnnouncementRequestedNotification
             object:nil];
    return self;
}

- (void)dealloc {
    [[NSNotificationCenter defaultCenter] removeObserver:self];
    [super dealloc];
}

- (void)hear:(NSNotification*)notification {
    NSDictionary* const info = [notification userInfo];
    _heard.push_back(
        toUtf8(dynamicCast<NSString>([info objectForKey:NSAccessibilityAnnouncementKey])));
    _from.push_back([notification object]);
    EXPECT_EQ([[info objectForKey:NSAccessibilityPriorityKey] integerValue],
              NSAccessibilityPriorityHigh);
}

@end

namespace {

class AnnouncementTest : public ShellTest {
  protected:
    const RetainPtr<AnnouncementListener> listener = adoptNS([[AnnouncementListener alloc] init]);

    [[nodiscard]] const std::vector<std::string>& heard() const { return listener.get()->_heard; }
};

TEST_F(AnnouncementTest, EverySentenceOfTheStatusLineIsReadOutFromItsWindow) {
    launch();
    EXPECT_TRUE(heard().empty());
    performToEnd("status");
    [app perform:"save"];
    EXPECT_EQ(heard(), (std::vector<std::string>{"Working...", "Ready.",
                                                 "Desktop settings saved. Service unchanged."}));
    for (const id from : listener.get()->_from) {
        EXPECT_EQ(from, window());
    }
}

TEST_F(AnnouncementTest, ARefusalIsReadOutToo) {
    launch();
    ASSERT_TRUE(typeInto([app node], @"node"));
    [app perform:"save"];
    EXPECT_EQ(heard(), std::vector<std::string>{"Choose an absolute installation folder and an "
                                                "executable Node 22+ runtime."});
}

TEST_F(AnnouncementTest, ALineInNoWindowSaysNothingAloud) {
    NSTextField* const line = makeStatusLine("before");
    tell(line, "after");
    EXPECT_EQ(textOf(line), "after");
    EXPECT_TRUE(heard().empty());
}

}  // namespace
