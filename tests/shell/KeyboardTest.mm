// The settings window without a mouse.
#include "shell/ShellTest.h"

#include "common/Text.h"
#include "shell/Keyboard.h"
#include "support/AppKitDriver.h"

using namespace veltrix;
using namespace veltrix::test;

namespace {

class KeyboardTest : public ShellTest {
  protected:
    void SetUp() override {
        launch();
        ASSERT_TRUE(pumpUntil([this] { return (bool)[window() isKeyWindow]; }));
    }
};

TEST_F(KeyboardTest, TheFirstFieldHasTheFocusAtFirst) {
    EXPECT_EQ(focusedField(window()), [app home]);
}

TEST_F(KeyboardTest, TheKeyViewsFollowTheReadingOrderAndComeRound) {
    NSView* view = [window() initialFirstResponder];
    EXPECT_EQ(view, [app home]);
    // Behind the five navigation buttons, which come last.
    for (std::size_t i = 0; i < 18; ++i) {
        EXPECT_EQ(view, [app controls][(i + 5) % 18].get()) << i;
        view = [view nextKeyView];
    }
    EXPECT_EQ(view, [app home]);
}

// Whether Tab stops at buttons too is the person's choice; what counts is the order of the fields.
TEST_F(KeyboardTest, TabGoesThroughTheFieldsInOrderAndBack) {
    const auto nextField = [this](NSString* key, NSEventModifierFlags modifiers) {
        for (int i = 0; i < 10; ++i) {
            NSResponder* const responder = [window() firstResponder];
            NSTextField* const field = focusedField(window());
            pressKey(window(), key, modifiers);
            EXPECT_TRUE(pumpUntil([&] {
                return [window() firstResponder] != responder || focusedField(window()) != field;
            }));
            if (focusedField(window()) != nil) {
                return focusedField(window());
            }
        }
        return focusedField(window());
    };
    ASSERT_EQ(focusedField(window()), [app home]);
    for (NSTextField* field : {[app node], [app storage], [app origin], [app retention]}) {
        EXPECT_EQ(nextField(@"\t", 0), field) << toUtf8([field accessibilityLabel]);
    }
    for (NSTextField* field : {[app origin], [app storage], [app node], [app home]}) {
        EXPECT_EQ(nextField(@"\x19", NSEventModifierFlagShift), field)
            << toUtf8([field accessibilityLabel]);
    }
}

TEST_F(KeyboardTest, CommandVPastesIntoEveryField) {
    putOnPasteboard(@"/pasted path");
    for (NSTextField* field :
         {[app home], [app node], [app storage], [app origin], [app retention]}) {
        SCOPED_TRACE(toUtf8([field accessibilityLabel]));
        beginTyping(field, @"");
        pressKey(window(), @"v", NSEventModifierFlagCommand);
        EXPECT_TRUE(pumpUntil(
            [field] { return [[[field currentEditor] string] isEqualToString:@"/pasted path"]; }));
        [window() makeFirstResponder:nil];
        EXPECT_EQ(textOf(field), "/pasted path");
    }
}

TEST_F(KeyboardTest, CommandACAndXSelectCopyAndCut) {
    beginTyping([app origin], @"https://copied.example");
    pressKey(window(), @"a", NSEventModifierFlagCommand);
    EXPECT_TRUE(
        pumpUntil([this] { return [[[app origin] currentEditor] selectedRange].length == 22; }));
    putOnPasteboard(@"other");
    const auto pasteboard = [] {
        return toUtf8([[NSPasteboard generalPasteboard] stringForType:NSPasteboardTypeString]);
    };
    pressKey(window(), @"c", NSEventModifierFlagCommand);
    EXPECT_TRUE(pumpUntil([&] { return pasteboard() == "https://copied.example"; }));
    EXPECT_EQ(toUtf8([[[app origin] currentEditor] string]), "https://copied.example");
    pressKey(window(), @"x", NSEventModifierFlagCommand);
    EXPECT_TRUE(pumpUntil([this] { return [[[[app origin] currentEditor] string] length] == 0; }));
}

TEST_F(KeyboardTest, CommandWClosesTheWindowAndNothingElse) {
    pressKey(window(), @"w", NSEventModifierFlagCommand);
    EXPECT_TRUE(pumpUntil([this] { return ![window() isVisible]; }));
    EXPECT_TRUE(app.get()->_terminations.empty());
}

TEST_F(KeyboardTest, TheMainMenuIsInvisiblyThereWithItsEditKeys) {
    NSMutableArray* const keys = [NSMutableArray array];
    for (NSMenuItem* menu in [[NSApp mainMenu] itemArray]) {
        for (NSMenuItem* item in [[menu submenu] itemArray]) {
            if ([[item keyEquivalent] length] > 0) {
                [keys addObject:[item keyEquivalent]];
                EXPECT_EQ([item target], nil) << toUtf8([item title]);
            }
        }
    }
    EXPECT_EQ(toUtf8([keys componentsJoinedByString:@""]), "wzZxcva");
}

TEST_F(KeyboardTest, ReturnInAFieldStartsNothing) {
    beginTyping([app home], @"/entered");
    pressKey(window(), @"\r");
    EXPECT_TRUE(pumpUntil([this] { return textOf([app home]) == "/entered"; }));
    EXPECT_FALSE([app busy]);
    EXPECT_EQ(status(), "Service status unknown");
    EXPECT_TRUE(settings->writes.empty());
}

}  // namespace
