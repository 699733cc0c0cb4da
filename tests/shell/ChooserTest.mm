// The open panels behind the settings window's "Choose..." buttons.
#include "shell/ShellTest.h"

#include "common/Text.h"
#include "shell/Keyboard.h"
#include "support/AppKitDriver.h"
#include "support/OpenPanel.h"

using namespace veltrix;
using namespace veltrix::test;

namespace {

class ChooserTest : public ShellTest {
  protected:
    void SetUp() override { launch(); }

    // Presses a "Choose..." button while somebody answers its panel.
    void choose(NSButton* button, std::function<void(NSOpenPanel*)> respond) {
        const ModalResponder responder([&respond](NSWindow* shown) {
            NSOpenPanel* const panel = dynamicCast<NSOpenPanel>(shown);
            EXPECT_NE(panel, nil);
            respond(panel);
        });
        ASSERT_TRUE(press(button));
        EXPECT_TRUE(responder.responded());
    }

    void choosePath(NSButton* button, const std::string& path) {
        choose(button, [&path](NSOpenPanel* panel) {
            if (!chooseInOpenPanel(panel, toNSString(path))) {
                ADD_FAILURE() << "cannot be chosen: " << path;
                cancelOpenPanel(panel);
            }
        });
    }

    [[nodiscard]] NSButton* chooser(NSString* identifier) const {
        return buttonIdentified(window(), identifier);
    }

    [[nodiscard]] std::vector<std::string> fields() const {
        return {textOf([app home]), textOf([app node]), textOf([app storage]), textOf([app origin]),
                textOf([app retention])};
    }
};

TEST_F(ChooserTest, TheNodeFieldTakesOneFileAndNoFolder) {
    choose(chooser(@"node"), [](NSOpenPanel* panel) {
        EXPECT_TRUE((bool)[panel canChooseFiles]);
        EXPECT_FALSE((bool)[panel canChooseDirectories]);
        EXPECT_FALSE((bool)[panel allowsMultipleSelection]);
        cancelOpenPanel(panel);
    });
}

TEST_F(ChooserTest, TheFolderFieldsTakeOneFolderAndNoFile) {
    for (NSString* const field : {@"home", @"storage"}) {
        choose(chooser(field), [](NSOpenPanel* panel) {
            EXPECT_FALSE((bool)[panel canChooseFiles]);
            EXPECT_TRUE((bool)[panel canChooseDirectories]);
            EXPECT_FALSE((bool)[panel allowsMultipleSelection]);
            cancelOpenPanel(panel);
        });
    }
}

TEST_F(ChooserTest, CancellingKeepsEveryText) {
    const auto before = fields();
    for (NSString* const field : {@"home", @"node", @"storage"}) {
        choose(chooser(field), [](NSOpenPanel* panel) { cancelOpenPanel(panel); });
        EXPECT_EQ(fields(), before);
    }
}

TEST_F(ChooserTest, AChosenPathFillsItsOwnFieldOnlyAndIsNotStored) {
    const TempFolder folder;
    const std::string installationFolder = folder.makeFolder("an installation");
    const std::string recordings = folder.makeFolder("recordings é");
    const std::string runtime = folder.write("node", "not even a program");

    choosePath(chooser(@"home"), installationFolder);
    auto expected = fields();
    expected[0] = installationFolder;
    EXPECT_EQ(fields(), expected);

    choosePath(chooser(@"storage"), recordings);
    expected[2] = recordings;
    EXPECT_EQ(fields(), expected);

    choosePath(chooser(@"node"), runtime);
    expected[1] = runtime;
    EXPECT_EQ(fields(), expected);
    EXPECT_TRUE(settings->writes.empty());
    EXPECT_EQ(status(), "Service status unknown");
}

TEST_F(ChooserTest, AChosenPathReplacesWhatIsBeingTyped) {
    const TempFolder folder;
    const std::string chosen = folder.makeFolder("chosen");
    beginTyping([app home], @"/half of a pa");
    choosePath(chooser(@"home"), chosen);
    [app perform:"save"];
    EXPECT_EQ(settings->values.at("installationHome"), chosen);
}

TEST_F(ChooserTest, AButtonNobodyKnowsChoosesTheInstallationFolder) {
    const TempFolder folder;
    for (NSString* const identifier : {(NSString*)nil, @"elsewhere"}) {
        NSButton* const button = [NSButton buttonWithTitle:@"Choose..."
                                                    target:app
                                                    action:@selector(choose:)];
        [button setIdentifier:identifier];
        [[window() contentView] addSubview:button];
        const std::string chosen =
            folder.makeFolder(identifier == nil ? "without a name" : "unknown name");
        auto expected = fields();
        expected[0] = chosen;
        choosePath(button, chosen);
        EXPECT_EQ(fields(), expected);
        [button removeFromSuperview];
    }
}

}  // namespace
