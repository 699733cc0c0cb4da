// What the settings window is made of: its properties, its parts in order and its form.
#include "shell/ShellTest.h"

#include "common/Text.h"
#include "shell/Layout.h"
#include "support/AppKitDriver.h"

#include <cmath>

using namespace veltrix;
using namespace veltrix::test;

namespace {

class SettingsWindowTest : public ShellTest {
  protected:
    void SetUp() override { launch(); }

    [[nodiscard]] NSStackView* root() const { return rootStack(window()); }
    [[nodiscard]] NSView* part(NSUInteger index) const {
        return [[root() arrangedSubviews] objectAtIndex:index];
    }
    // The text of a part that is a label.
    [[nodiscard]] std::string label(NSUInteger index) const {
        NSTextField* const field = dynamicCast<NSTextField>(part(index));
        EXPECT_FALSE((bool)[field isEditable]);
        return textOf(field);
    }
    [[nodiscard]] NSStackView* row(NSUInteger index) const {
        return dynamicCast<NSStackView>(part(index));
    }
};

TEST_F(SettingsWindowTest, HasTheGivenSizeStyleAndTitle) {
    const NSSize content = [[window() contentView] frame].size;
    EXPECT_EQ(content.width, 760);
    EXPECT_EQ(content.height, 640);
    EXPECT_EQ([window() contentMinSize].width, 720);
    EXPECT_EQ([window() contentMinSize].height, 440);
    EXPECT_EQ([window() styleMask] & 0xf, NSWindowStyleMaskTitled | NSWindowStyleMaskClosable |
                                              NSWindowStyleMaskMiniaturizable |
                                              NSWindowStyleMaskResizable);
    EXPECT_EQ([window() backingType], NSBackingStoreBuffered);
    EXPECT_EQ(toUtf8([window() title]), "Veltrix Home DVR");
    EXPECT_FALSE((bool)[window() isReleasedWhenClosed]);
}

TEST_F(SettingsWindowTest, StandsInTheMiddleOfTheScreen) {
    const NSRect screen = [[window() screen] visibleFrame];
    const NSRect frame = [window() frame];
    EXPECT_LE(std::abs(NSMidX(frame) - NSMidX(screen)), 2);
    // A little above the middle is in the middle too.
    EXPECT_GE(NSMidY(frame), NSMidY(screen) - 2);
    EXPECT_LT(NSMaxY(frame), NSMaxY(screen));
}

TEST_F(SettingsWindowTest, ScrollsVerticallyOnlyAndOnlyWhenNeeded) {
    NSScrollView* const scroll = scrollView(window());
    ASSERT_NE(scroll, nil);
    EXPECT_FALSE((bool)[scroll hasHorizontalScroller]);
    EXPECT_TRUE((bool)[scroll autohidesScrollers]);
    EXPECT_FALSE((bool)[scroll drawsBackground]);
    EXPECT_EQ([scroll autoresizingMask], NSViewWidthSizable | NSViewHeightSizable);
    EXPECT_TRUE(NSEqualRects([scroll frame], [[window() contentView] bounds]));
    EXPECT_EQ(toUtf8(NSStringFromClass([[scroll documentView] class])), "SettingsDocumentView");
    EXPECT_TRUE((bool)[[scroll documentView] isFlipped]);
}

TEST_F(SettingsWindowTest, IsOneColumnWithTheGivenSpacingAndInsets) {
    EXPECT_EQ([root() orientation], NSUserInterfaceLayoutOrientationVertical);
    EXPECT_EQ([root() alignment], NSLayoutAttributeLeading);
    EXPECT_EQ([root() spacing], 16);
    const NSRect document = inWindow([scrollView(window()) documentView]);
    const NSRect stack = inWindow(root());
    EXPECT_EQ(NSMinX(stack) - NSMinX(document), 24);
    EXPECT_EQ(NSMaxX(document) - NSMaxX(stack), 24);
    EXPECT_EQ(NSMaxY(document) - NSMaxY(stack), 24);
    for (NSUInteger i = 1; i < [[root() arrangedSubviews] count]; ++i) {
        EXPECT_NEAR(NSMinY(inWindow(part(i - 1))) - NSMaxY(inWindow(part(i))), 16, 0.5) << i;
        EXPECT_NEAR(NSMinX(inWindow(part(i))), NSMinX(stack), 0.5) << i;
    }
}

TEST_F(SettingsWindowTest, ShowsTitleRowsFormAndStatusLineInOrder) {
    ASSERT_EQ([[root() arrangedSubviews] count], 14U);
    EXPECT_EQ(label(0), "Veltrix Home DVR");
    EXPECT_EQ([[row(1) arrangedSubviews] count], 5U);
    EXPECT_EQ(label(2), "Installation folder");
    EXPECT_EQ([[row(3) arrangedSubviews] objectAtIndex:0], [app home]);
    EXPECT_EQ(label(4), "Node executable");
    EXPECT_EQ([[row(5) arrangedSubviews] objectAtIndex:0], [app node]);
    EXPECT_EQ(label(6), "Recording storage (first install)");
    EXPECT_EQ([[row(7) arrangedSubviews] objectAtIndex:0], [app storage]);
    EXPECT_EQ(label(8), "Trusted HTTPS origin (existing TLS proxy)");
    EXPECT_EQ(part(9), [app origin]);
    EXPECT_EQ(label(10), "Retention days (first install)");
    EXPECT_EQ(part(11), [app retention]);
    EXPECT_EQ([[row(12) arrangedSubviews] count], 5U);
    EXPECT_EQ(part(13), [app status]);
}

TEST_F(SettingsWindowTest, TheTitleIsLargeAndSemibold) {
    NSFont* const font = [dynamicCast<NSTextField>(part(0)) font];
    EXPECT_EQ(font, [NSFont systemFontOfSize:22 weight:NSFontWeightSemibold]);
    EXPECT_EQ([font pointSize], 22);
}

struct ExpectedControl {
    const char* kind;
    const char* title;
    const char* identifier;
    const char* action;
};

constexpr ExpectedControl kControls[] = {
    {"NSButton", "Dashboard", "overview", "buttonCommand:"},
    {"NSButton", "Recordings", "recordings", "buttonCommand:"},
    {"NSButton", "Sharing", "shares", "buttonCommand:"},
    {"NSButton", "Start DVR", "start", "buttonCommand:"},
    {"NSButton", "Stop DVR", "stop", "buttonCommand:"},
    {"NSTextField", "Installation folder", "", ""},
    {"NSButton", "Choose...", "home", "choose:"},
    {"NSTextField", "Node executable", "", ""},
    {"NSButton", "Choose...", "node", "choose:"},
    {"NSTextField", "Recording storage (first install)", "", ""},
    {"NSButton", "Choose...", "storage", "choose:"},
    {"NSTextField", "Trusted HTTPS origin (existing TLS proxy)", "", ""},
    {"NSTextField", "Retention days (first install)", "", ""},
    {"NSButton", "Install DVR", "install", "buttonCommand:"},
    {"NSButton", "TLS / Account", "setup", "buttonCommand:"},
    {"NSButton", "Save", "save", "buttonCommand:"},
    {"NSButton", "Configuration Folder", "configuration", "buttonCommand:"},
    {"NSButton", "Refresh Status", "status", "buttonCommand:"},
};

TEST_F(SettingsWindowTest, LocksEighteenControlsInOrder) {
    ASSERT_EQ([app controls].size(), std::size(kControls));
    for (std::size_t i = 0; i < std::size(kControls); ++i) {
        NSControl* const control = [app controls][i];
        const ExpectedControl& expected = kControls[i];
        SCOPED_TRACE(std::to_string(i) + " " + expected.title);
        EXPECT_TRUE((bool)[control isKindOfClass:NSClassFromString(toNSString(expected.kind))]);
        EXPECT_EQ([control window], window());
        EXPECT_TRUE((bool)[control isEnabled]);
        if (NSButton* const button = dynamicCast<NSButton>(control)) {
            EXPECT_EQ(toUtf8([button title]), expected.title);
            EXPECT_EQ(toUtf8([button identifier]), expected.identifier);
            EXPECT_EQ(toUtf8(NSStringFromSelector([button action])), expected.action);
            EXPECT_EQ([button target], app.get());
        } else {
            // A field is known by what it is called to assistive technology: its label's text.
            EXPECT_EQ(toUtf8([control accessibilityLabel]), expected.title);
            EXPECT_TRUE((bool)[dynamicCast<NSTextField>(control) isEditable]);
        }
    }
}

TEST_F(SettingsWindowTest, NavigationButtonsCarryADescribedPictureBeforeTheirTitle) {
    EXPECT_EQ([row(1) spacing], 12);
    for (NSUInteger i = 0; i < 5; ++i) {
        NSButton* const button = dynamicCast<NSButton>([[row(1) arrangedSubviews] objectAtIndex:i]);
        EXPECT_EQ([app controls][i].get(), button);
        ASSERT_NE([button image], nil) << kControls[i].title;
        EXPECT_EQ(toUtf8([[button image] accessibilityDescription]), kControls[i].title);
        EXPECT_EQ([button imagePosition], NSImageLeading);
        EXPECT_EQ([button bezelStyle], NSBezelStyleRounded);
        EXPECT_EQ(toUtf8([button accessibilityLabel]), kControls[i].title);
    }
}

TEST_F(SettingsWindowTest, ActionButtonsAreWithoutAPicture) {
    EXPECT_EQ([row(12) spacing], 10);
    for (NSUInteger i = 0; i < 5; ++i) {
        NSButton* const button =
            dynamicCast<NSButton>([[row(12) arrangedSubviews] objectAtIndex:i]);
        EXPECT_EQ([app controls][13 + i].get(), button);
        EXPECT_EQ([button image], nil) << toUtf8([button title]);
    }
}

TEST_F(SettingsWindowTest, FieldsTakeTheSpareWidthAndButtonsKeepTheirNaturalSize) {
    const CGFloat full = NSWidth([root() frame]);
    for (const NSUInteger index : {3, 5, 7}) {
        NSStackView* const form = row(index);
        EXPECT_EQ([form orientation], NSUserInterfaceLayoutOrientationHorizontal);
        EXPECT_NEAR(NSWidth([form frame]), full, 0.5);
        ASSERT_EQ([[form arrangedSubviews] count], 2U);
        NSTextField* const field =
            dynamicCast<NSTextField>([[form arrangedSubviews] objectAtIndex:0]);
        NSButton* const button = dynamicCast<NSButton>([[form arrangedSubviews] objectAtIndex:1]);
        EXPECT_EQ(
            [field contentHuggingPriorityForOrientation:NSLayoutConstraintOrientationHorizontal],
            250);
        EXPECT_NEAR(NSWidth([button frame]), [button fittingSize].width, 0.5);
        EXPECT_NEAR(NSWidth([field frame]) + [form spacing] + NSWidth([button frame]), full, 0.5);
    }
    for (NSTextField* field : {[app origin], [app retention], [app status]}) {
        EXPECT_NEAR(NSWidth([field frame]), full, 0.5) << textOf(field);
    }
}

TEST_F(SettingsWindowTest, TheStatusLineIsNotAmongWhatIsLocked) {
    for (const auto& control : [app controls]) {
        EXPECT_NE(control.get(), [app status]);
        EXPECT_NE(control.get(), part(0));
    }
}

TEST_F(SettingsWindowTest, TheOriginFieldIsEmptyAndShowsAnExample) {
    EXPECT_EQ(textOf([app origin]), "");
    const std::string example = toUtf8([[app origin] placeholderString]);
    EXPECT_TRUE(example.starts_with("https://")) << example;
}

TEST_F(SettingsWindowTest, ClosingHidesItAndSettingsShowsItAsItWas) {
    NSWindow* const before = window();
    ASSERT_TRUE(typeInto([app home], @"/somewhere/else"));
    ASSERT_TRUE(typeInto([app retention], @"7"));
    [app perform:"nothing"];  // refused or run: whatever it says must still be there
    ASSERT_TRUE(untilIdle());
    const std::string said = status();
    pressCloseButton(window());
    EXPECT_TRUE(pumpUntil([this] { return ![window() isVisible]; }));
    EXPECT_TRUE(app.get()->_terminations.empty());

    ASSERT_TRUE(chooseMenuItem(menu(), @"Settings..."));
    EXPECT_EQ(window(), before);
    EXPECT_TRUE((bool)[window() isVisible]);
    EXPECT_TRUE(pumpUntil([this] { return (bool)[window() isKeyWindow]; }));
    EXPECT_EQ(textOf([app home]), "/somewhere/else");
    EXPECT_EQ(textOf([app retention]), "7");
    EXPECT_EQ(status(), said);
}

TEST_F(SettingsWindowTest, ClosingTheLastWindowDoesNotEndTheApplication) {
    EXPECT_FALSE((bool)[app applicationShouldTerminateAfterLastWindowClosed:NSApp]);
}

TEST_F(SettingsWindowTest, StartingTheProgramAgainShowsTheWindow) {
    pressCloseButton(window());
    ASSERT_TRUE(pumpUntil([this] { return ![window() isVisible]; }));
    EXPECT_FALSE((bool)[app applicationShouldHandleReopen:NSApp hasVisibleWindows:NO]);
    EXPECT_TRUE((bool)[window() isVisible]);
}

}  // namespace
