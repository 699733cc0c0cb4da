// The settings window at other sizes and with other texts than at first.
#include "shell/ShellTest.h"

#include "common/Text.h"
#include "shell/Layout.h"
#include "support/AppKitDriver.h"

using namespace veltrix;
using namespace veltrix::test;

namespace {

class SettingsLayoutTest : public ShellTest {
  protected:
    void SetUp() override { launch(); }

    [[nodiscard]] NSScrollView* scroll() const { return scrollView(window()); }

    void expectNoHorizontalScrolling() const {
        EXPECT_FALSE((bool)[scroll() hasHorizontalScroller]);
        EXPECT_TRUE([scroll() horizontalScroller] == nil ||
                    (bool)[[scroll() horizontalScroller] isHidden] ||
                    [[scroll() horizontalScroller] superview] == nil);
        EXPECT_EQ(NSWidth([[scroll() documentView] frame]),
                  NSWidth([[scroll() contentView] bounds]));
        EXPECT_EQ(NSMinX([[scroll() contentView] bounds]), 0);
    }

    // From the content's upper edge down to the first thing in it.
    [[nodiscard]] CGFloat distanceToTop() const {
        return NSMaxY(inWindow([window() contentView])) - NSMaxY(inWindow(rootStack(window())));
    }
};

TEST_F(SettingsLayoutTest, FitsIntoItsFirstSizeWithoutScrolling) {
    EXPECT_LE(NSHeight([[scroll() documentView] frame]), 640);
    expectNoHorizontalScrolling();
}

TEST_F(SettingsLayoutTest, ATallerWindowKeepsTheFormAtTheTop) {
    EXPECT_EQ(distanceToTop(), 24);
    resizeContent(window(), 760, 900);
    EXPECT_EQ(distanceToTop(), 24);
    EXPECT_EQ(NSHeight([[scroll() documentView] frame]), 900);
    resizeContent(window(), 1100, 860);
    EXPECT_EQ(distanceToTop(), 24);
}

TEST_F(SettingsLayoutTest, AWiderWindowWidensTheFieldsAndNotTheButtons) {
    NSButton* const choose = buttonIdentified(window(), @"home");
    const CGFloat button = NSWidth([choose frame]);
    const CGFloat field = NSWidth([[app home] frame]);
    resizeContent(window(), 1000, 640);
    EXPECT_EQ(NSWidth([choose frame]), button);
    EXPECT_NEAR(NSWidth([[app home] frame]), field + 240, 0.5);
    EXPECT_NEAR(NSWidth([[app origin] frame]), 1000 - 48, 0.5);
}

TEST_F(SettingsLayoutTest, TheSmallestWindowScrollsVerticallyOnly) {
    resizeContent(window(), 720, 440);
    expectNoHorizontalScrolling();
    EXPECT_TRUE((bool)[scroll() hasVerticalScroller]);
    EXPECT_GT(NSHeight([[scroll() documentView] frame]), 440);
    EXPECT_EQ(distanceToTop(), 24);
}

TEST_F(SettingsLayoutTest, EverythingFitsAcrossTheSmallestWindow) {
    resizeContent(window(), 720, 440);
    const CGFloat right = NSMaxX(inWindow([scroll() contentView]));
    for (const auto& control : [app controls]) {
        EXPECT_LE(NSMaxX(inWindow(control)), right - 24) << toUtf8([control accessibilityLabel]);
        EXPECT_GE(NSWidth([control frame]), 40) << toUtf8([control accessibilityLabel]);
    }
}

TEST_F(SettingsLayoutTest, EveryPartCanBeScrolledToInTheSmallestWindow) {
    resizeContent(window(), 720, 440);
    const NSRect visible = inWindow([scroll() contentView]);
    EXPECT_FALSE(NSContainsRect(visible, inWindow([app status])));
    [[app status] scrollRectToVisible:[[app status] bounds]];
    EXPECT_TRUE(NSContainsRect(visible, inWindow([app status])));
}

TEST_F(SettingsLayoutTest, NoWidthBringsAHorizontalScroller) {
    for (const CGFloat width : {760, 720, 600, 480, 360}) {
        SCOPED_TRACE(width);
        resizeContent(window(), width, 640);
        expectNoHorizontalScrolling();
    }
}

TEST_F(SettingsLayoutTest, AVeryLongPathStaysOnOneLineOfItsFieldAndPushesNothing) {
    const CGFloat height = NSHeight([[app home] frame]);
    const NSRect button = [buttonIdentified(window(), @"home") frame];
    const std::string path = "/" + std::string(299, 'p');
    ASSERT_TRUE(typeInto([app home], toNSString(path)));
    [[window() contentView] layoutSubtreeIfNeeded];
    EXPECT_EQ(textOf([app home]), path);
    EXPECT_EQ(NSHeight([[app home] frame]), height);
    EXPECT_TRUE(NSEqualRects([buttonIdentified(window(), @"home") frame], button));
    EXPECT_TRUE((bool)[[[app home] cell] isScrollable]);
    expectNoHorizontalScrolling();
    resizeContent(window(), 720, 440);
    expectNoHorizontalScrolling();
}

TEST_F(SettingsLayoutTest, TheStatusLineWrapsAndIsNeverCutOff) {
    resizeContent(window(), 720, 440);
    [app perform:"save"];
    const CGFloat oneLine = NSHeight([[app status] frame]);
    EXPECT_GE(oneLine, neededHeight([app status]));

    NSMutableString* const text = [NSMutableString string];
    for (int i = 0; i < 12; ++i) {
        [text appendString:@"The service has more to say than fits into one line. "];
    }
    [[app status] setStringValue:text];
    [[window() contentView] layoutSubtreeIfNeeded];
    EXPECT_TRUE((bool)[[[app status] cell] wraps]);
    EXPECT_GT(NSHeight([[app status] frame]), 3 * oneLine);
    EXPECT_GE(NSHeight([[app status] frame]), neededHeight([app status]));
    EXPECT_NEAR(NSWidth([[app status] frame]), NSWidth([rootStack(window()) frame]), 0.5);

    resizeContent(window(), 1200, 640);
    EXPECT_GE(NSHeight([[app status] frame]), neededHeight([app status]));
    resizeContent(window(), 500, 640);
    EXPECT_GE(NSHeight([[app status] frame]), neededHeight([app status]));
}

TEST_F(SettingsLayoutTest, TheLongestSentenceOfAllIsShownInFull) {
    scriptsReply(R"({"ok":true,"code":"installed_stopped"})");
    performToEnd("status");
    resizeContent(window(), 720, 440);
    ASSERT_EQ(status(), "DVR installed and stopped. HTTPS proxy and account/source authorization "
                        "must be ready before use.");
    EXPECT_GE(NSHeight([[app status] frame]), neededHeight([app status]));
}

}  // namespace
