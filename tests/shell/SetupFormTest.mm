// What the setup window is made of: its properties, its parts in order and its form.
#include "shell/SetupWindowTest.h"

#include "common/Text.h"
#include "shell/Keyboard.h"
#include "shell/Layout.h"
#include "support/AppKitDriver.h"

#include <cmath>
#include <iterator>

using namespace veltrix;
using namespace veltrix::test;

namespace {

class SetupFormTest : public SetupWindowTest {
  protected:
    void SetUp() override {
        writeSettings(R"({"DVR_PUBLIC_ORIGIN":"https://dvr.home:8443"})");
        open();
    }

    [[nodiscard]] NSStackView* root() const { return rootStack(panel()); }
    [[nodiscard]] NSScrollView* scroll() const { return scrollView(panel()); }
    [[nodiscard]] NSView* part(NSUInteger index) const {
        return [[root() arrangedSubviews] objectAtIndex:index];
    }
    [[nodiscard]] std::string label(NSUInteger index) const {
        NSTextField* const field = dynamicCast<NSTextField>(part(index));
        EXPECT_FALSE((bool)[field isEditable]);
        return textOf(field);
    }
    [[nodiscard]] NSArray* row(NSUInteger index) const {
        NSStackView* const stack = dynamicCast<NSStackView>(part(index));
        EXPECT_EQ([stack orientation], NSUserInterfaceLayoutOrientationHorizontal);
        return [stack arrangedSubviews];
    }
    [[nodiscard]] std::vector<std::string> titles(NSUInteger index) const {
        std::vector<std::string> found;
        for (NSView* view in row(index)) {
            found.push_back(toUtf8([dynamicCast<NSButton>(view) title]));
        }
        return found;
    }

    void expectNoHorizontalScrolling() const {
        EXPECT_FALSE((bool)[scroll() hasHorizontalScroller]);
        EXPECT_EQ(NSWidth([[scroll() documentView] frame]),
                  NSWidth([[scroll() contentView] bounds]));
    }
    // From the upper edge of what is visible down to the column.
    [[nodiscard]] CGFloat distanceToTop() const {
        return NSMaxY(inWindow([scroll() contentView])) - NSMaxY(inWindow(root()));
    }
};

using Titles = std::vector<std::string>;

TEST_F(SetupFormTest, TheWindowHasTheGivenSizeStyleAndTitle) {
    const NSSize content = [[panel() contentView] frame].size;
    EXPECT_EQ(content.width, 710);
    EXPECT_EQ(content.height, 730);
    EXPECT_EQ([panel() minSize].width, 640);
    EXPECT_EQ([panel() minSize].height, 520);
    EXPECT_EQ([panel() styleMask] & 0xf,
              NSWindowStyleMaskTitled | NSWindowStyleMaskClosable | NSWindowStyleMaskResizable);
    EXPECT_EQ([panel() backingType], NSBackingStoreBuffered);
    EXPECT_EQ(toUtf8([panel() title]), "TLS and Account Setup");
    EXPECT_FALSE((bool)[panel() isReleasedWhenClosed]);
    EXPECT_EQ((id)[panel() delegate], setup());
    EXPECT_LE(std::abs(NSMidX([panel() frame]) - NSMidX([[panel() screen] visibleFrame])), 2);
}

TEST_F(SetupFormTest, AScrollViewFillsTheWindowWithOneColumn) {
    EXPECT_TRUE(NSEqualRects(inWindow(scroll()), inWindow([panel() contentView])));
    EXPECT_FALSE((bool)[scroll() hasHorizontalScroller]);
    EXPECT_FALSE((bool)[[scroll() documentView] isFlipped]);
    EXPECT_EQ([root() orientation], NSUserInterfaceLayoutOrientationVertical);
    EXPECT_EQ([root() alignment], NSLayoutAttributeLeading);
    EXPECT_EQ([root() spacing], 12);
    const NSRect document = inWindow([scroll() documentView]);
    const NSRect column = inWindow(root());
    EXPECT_EQ(NSMinX(column) - NSMinX(document), 20);
    EXPECT_EQ(NSMaxX(document) - NSMaxX(column), 20);
    EXPECT_EQ(NSMaxY(document) - NSMaxY(column), 20);
    EXPECT_EQ(NSMinY(column) - NSMinY(document), 20);
}

TEST_F(SetupFormTest, ShowsItsEighteenPartsInOrder) {
    ASSERT_EQ([[root() arrangedSubviews] count], 18U);
    EXPECT_EQ(label(0), "https://dvr.home:8443");
    EXPECT_EQ(label(1), "Certificate chain (PEM)");
    EXPECT_EQ([row(2) objectAtIndex:0], [setup() certificate]);
    EXPECT_EQ(label(3), "Private key (PEM)");
    EXPECT_EQ([row(4) objectAtIndex:0], [setup() key]);
    EXPECT_EQ(label(5), "Optional local CA (PEM)");
    EXPECT_EQ([row(6) objectAtIndex:0], [setup() ca]);
    EXPECT_EQ(part(7), [setup() trustCA]);
    EXPECT_EQ(label(8), "DVR username");
    EXPECT_EQ(part(9), [setup() username]);
    EXPECT_EQ(label(10), "DVR password (15-128 bytes)");
    EXPECT_EQ(part(11), [setup() password]);
    EXPECT_EQ(part(12), [setup() trustProxy]);
    EXPECT_EQ(titles(13), (Titles{"Validate TLS", "Request Account Approval"}));
    EXPECT_EQ(titles(14), (Titles{"Check Approval", "Resume Saved Approval"}));
    EXPECT_EQ(titles(15), (Titles{"Renew Saved Approval", "Set DVR Login"}));
    EXPECT_EQ(toUtf8([dynamicCast<NSButton>(part(16)) title]), "Manage Account");
    EXPECT_EQ(part(17), [setup() status]);
    EXPECT_EQ(said(), "DVR stays stopped during setup.");
}

struct ExpectedPart {
    const char* kind;
    const char* title;
    const char* identifier;
    const char* action;
};

constexpr ExpectedPart kParts[] = {
    {"NSTextField", "Certificate chain (PEM)", "", ""},
    {"NSButton", "Choose...", "cert", "choose:"},
    {"NSTextField", "Private key (PEM)", "", ""},
    {"NSButton", "Choose...", "key", "choose:"},
    {"NSTextField", "Optional local CA (PEM)", "", ""},
    {"NSButton", "Choose...", "ca", "choose:"},
    {"NSButton", "I trust the selected local CA", "", ""},
    {"NSTextField", "DVR username", "", ""},
    {"NSSecureTextField", "DVR password (15-128 bytes)", "", ""},
    {"NSButton", "Allow this computer's TLS gateway on loopback", "", ""},
    {"NSButton", "Validate TLS", "tls.configure", "performSetupAction:"},
    {"NSButton", "Request Account Approval", "enrollment.start", "performSetupAction:"},
    {"NSButton", "Check Approval", "enrollment.poll", "performSetupAction:"},
    {"NSButton", "Resume Saved Approval", "enrollment.resume", "performSetupAction:"},
    {"NSButton", "Renew Saved Approval", "enrollment.renew", "performSetupAction:"},
    {"NSButton", "Set DVR Login", "password.configure", "performSetupAction:"},
};

TEST_F(SetupFormTest, LocksSixteenControlsInOrder) {
    ASSERT_EQ([setup() controls].size(), std::size(kParts));
    for (std::size_t i = 0; i < std::size(kParts); ++i) {
        NSControl* const control = [setup() controls][i];
        const ExpectedPart& expected = kParts[i];
        SCOPED_TRACE(std::to_string(i) + " " + expected.title);
        EXPECT_TRUE((bool)[control isKindOfClass:NSClassFromString(toNSString(expected.kind))]);
        EXPECT_EQ([control window], panel());
        EXPECT_TRUE((bool)[control isEnabled]);
        if (NSButton* const button = dynamicCast<NSButton>(control)) {
            EXPECT_EQ(toUtf8([button title]), expected.title);
            EXPECT_EQ(toUtf8([button identifier]), expected.identifier);
            EXPECT_EQ(
                toUtf8([button action] == nullptr ? @"" : NSStringFromSelector([button action])),
                expected.action);
            EXPECT_EQ([button target], *expected.action == '\0' ? nil : (id)setup());
        } else {
            NSTextField* const field = dynamicCast<NSTextField>(control);
            EXPECT_EQ(toUtf8([field accessibilityLabel]), expected.title);
            EXPECT_TRUE((bool)[field isEditable]);
            EXPECT_EQ(textOf(field), "");
            EXPECT_EQ(toUtf8([field placeholderString]), "");
        }
    }
}

TEST_F(SetupFormTest, BothCheckBoxesAreOff) {
    EXPECT_EQ([[setup() trustCA] state], NSControlStateValueOff);
    EXPECT_EQ([[setup() trustProxy] state], NSControlStateValueOff);
}

TEST_F(SetupFormTest, ManageAccountIsNeverLocked) {
    NSButton* const manage = dynamicCast<NSButton>(part(16));
    EXPECT_EQ([manage target], setup());
    EXPECT_EQ(toUtf8(NSStringFromSelector([manage action])), "manage");
    for (const auto& control : [setup() controls]) {
        EXPECT_NE(control.get(), manage);
        EXPECT_NE(control.get(), [setup() status]);
    }
}

TEST_F(SetupFormTest, FieldsTakeTheSpareWidthAndButtonsKeepTheirNaturalSize) {
    const CGFloat full = NSWidth([root() frame]);
    EXPECT_EQ(full, 710 - 40);
    for (const NSUInteger index : {2, 4, 6}) {
        NSTextField* const field = dynamicCast<NSTextField>([row(index) objectAtIndex:0]);
        NSButton* const button = dynamicCast<NSButton>([row(index) objectAtIndex:1]);
        EXPECT_NEAR(NSWidth([part(index) frame]), full, 0.5);
        EXPECT_EQ(
            [field contentHuggingPriorityForOrientation:NSLayoutConstraintOrientationHorizontal],
            250);
        EXPECT_NEAR(NSWidth([button frame]), [button fittingSize].width, 0.5);
        EXPECT_NEAR(NSWidth([field frame]) + [dynamicCast<NSStackView>(part(index)) spacing] +
                        NSWidth([button frame]),
                    full, 0.5);
    }
    for (const NSUInteger index : {0, 9, 11, 17}) {
        EXPECT_NEAR(NSWidth([part(index) frame]), full, 0.5) << index;
    }
    EXPECT_LT(NSWidth([part(16) frame]), full / 2);
}

TEST_F(SetupFormTest, TabOrderIsTheReadingOrderWithManageAccountLast) {
    NSView* view = [panel() initialFirstResponder];
    for (const auto& control : [setup() controls]) {
        EXPECT_EQ(view, control.get()) << toUtf8([control accessibilityLabel]);
        view = [view nextKeyView];
    }
    EXPECT_EQ(view, part(16));
    EXPECT_EQ([view nextKeyView], [setup() certificate]);
    EXPECT_TRUE(pumpUntil([this] { return focusedField(panel()) == [setup() certificate]; }));
}

// --- Sizes ----------------------------------------------------------------------------------

TEST_F(SetupFormTest, FitsIntoItsFirstSizeAndBeginsAtTheTop) {
    EXPECT_LE(NSHeight([[scroll() documentView] frame]), 730);
    EXPECT_EQ(distanceToTop(), 20);
    expectNoHorizontalScrolling();
}

TEST_F(SetupFormTest, NoWidthBringsAHorizontalScroller) {
    for (const CGFloat width : {710, 640, 500, 400}) {
        SCOPED_TRACE(width);
        resizeContent(panel(), width, 520);
        expectNoHorizontalScrolling();
        EXPECT_GT(NSHeight([[scroll() documentView] frame]), 520);
        EXPECT_TRUE((bool)[scroll() hasVerticalScroller]);
    }
}

TEST_F(SetupFormTest, EverythingFitsAcrossTheSmallestWindow) {
    resizeContent(panel(), 640, 520);
    const CGFloat right = NSMaxX(inWindow([scroll() contentView]));
    for (const auto& control : [setup() controls]) {
        EXPECT_LE(NSMaxX(inWindow(control)), right - 20) << toUtf8([control accessibilityLabel]);
    }
}

TEST_F(SetupFormTest, AVeryLongPathPushesNothing) {
    const NSRect button = [buttonIdentified(panel(), @"cert") frame];
    const CGFloat height = NSHeight([[setup() certificate] frame]);
    ASSERT_TRUE(typeInto([setup() certificate], toNSString("/" + std::string(299, 'c'))));
    [[panel() contentView] layoutSubtreeIfNeeded];
    EXPECT_TRUE(NSEqualRects([buttonIdentified(panel(), @"cert") frame], button));
    EXPECT_EQ(NSHeight([[setup() certificate] frame]), height);
    expectNoHorizontalScrolling();
}

TEST_F(SetupFormTest, ALongOriginAndALongSentenceWrapAndAreNeverCutOff) {
    NSTextField* const origin = dynamicCast<NSTextField>(part(0));
    for (NSTextField* const line : {origin, [setup() status]}) {
        const CGFloat oneLine = NSHeight([line frame]);
        NSMutableString* const text = [NSMutableString string];
        for (int i = 0; i < 12; ++i) {
            [text appendString:@"This is longer than one line of the window. "];
        }
        [line setStringValue:text];
        resizeContent(panel(), 640, 520);
        EXPECT_TRUE((bool)[[line cell] wraps]);
        EXPECT_GT(NSHeight([line frame]), 3 * oneLine);
        EXPECT_GE(NSHeight([line frame]), neededHeight(line));
    }
    expectNoHorizontalScrolling();
}

// --- The public origin ----------------------------------------------------------------------

class SetupOriginTest : public SetupWindowTest {
  protected:
    [[nodiscard]] std::string shownOrigin() {
        open();
        NSTextField* const label =
            dynamicCast<NSTextField>([[rootStack(panel()) arrangedSubviews] objectAtIndex:0]);
        return textOf(label);
    }
};

TEST_F(SetupOriginTest, IsEmptyWithoutAnInstallation) {
    EXPECT_EQ(shownOrigin(), "");
}

TEST_F(SetupOriginTest, IsShownAndSentAsStored) {
    writeSettings("{\"DVR_PUBLIC_ORIGIN\":\"  https://dvr.home \",\"OTHER\":1}");
    EXPECT_EQ(shownOrigin(), "  https://dvr.home ");
    pressToEnd(@"Validate TLS");
    ASSERT_EQ(requests().size(), 1U);
    EXPECT_EQ(*stringMember(valuesOf(requests()[0]), "origin"), "  https://dvr.home ");
}

TEST_F(SetupOriginTest, IsEmptyWhenItIsANumber) {
    writeSettings(R"({"DVR_PUBLIC_ORIGIN":8443})");
    EXPECT_EQ(shownOrigin(), "");
}

TEST_F(SetupOriginTest, IsReadFromAFileOfTheLargestSize) {
    std::string contents = R"({"DVR_PUBLIC_ORIGIN":"https://dvr.home"})";
    contents.resize(65536, ' ');
    writeSettings(contents);
    EXPECT_EQ(shownOrigin(), "https://dvr.home");
}

TEST_F(SetupOriginTest, IsEmptyWhenTheFileIsOneByteLarger) {
    std::string contents = R"({"DVR_PUBLIC_ORIGIN":"https://dvr.home"})";
    contents.resize(65537, ' ');
    writeSettings(contents);
    EXPECT_EQ(shownOrigin(), "");
    pressToEnd(@"Validate TLS");
    EXPECT_EQ(*stringMember(valuesOf(requests().at(0)), "origin"), "");
}

using SetupFormDeathTest = SetupFormTest;

TEST_F(SetupFormDeathTest, ASetupWindowOfNothingStopsTheProcess) {
    EXPECT_DEATH(static_cast<void>([[SetupWindow alloc] init]), "");
}

}  // namespace
