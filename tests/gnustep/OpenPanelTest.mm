#import <AppKit/AppKit.h>

#include "support/AppKitDriver.h"
#include "support/TempFolder.h"
#include "support/gnustep/OpenPanelDriver.h"

#include <gtest/gtest.h>

using veltrix::test::cancelOpenPanel;
using veltrix::test::chooseInOpenPanel;
using veltrix::test::ModalResponder;

namespace {

struct OpenPanelTest : ::testing::Test {
    void pick(bool files) {
        [panel setCanChooseFiles:files];
        [panel setCanChooseDirectories:!files];
        [panel setAllowsMultipleSelection:NO];
    }

    const veltrix::test::TempFolder folder;
    NSOpenPanel* const panel = [NSOpenPanel openPanel];
};

TEST_F(OpenPanelTest, GivesTheFileChosen) {
    pick(true);
    const std::string file = folder.write("some file", "contents");
    bool accepted = false;
    const ModalResponder responder([&](NSWindow* window) {
        accepted = chooseInOpenPanel(window, [NSString stringWithUTF8String:file.c_str()]);
        if (!accepted)
            cancelOpenPanel(window);
    });
    EXPECT_EQ([panel runModal], NSModalResponseOK);
    EXPECT_TRUE(accepted);
    EXPECT_STREQ([[[panel URL] path] UTF8String], file.c_str());
}

TEST_F(OpenPanelTest, GivesTheFolderChosen) {
    pick(false);
    const std::string inner = folder.makeFolder("inner folder");
    const ModalResponder responder([&](NSWindow* window) {
        if (!chooseInOpenPanel(window, [NSString stringWithUTF8String:inner.c_str()]))
            cancelOpenPanel(window);
    });
    EXPECT_EQ([panel runModal], NSModalResponseOK);
    EXPECT_STREQ([[[panel URL] path] UTF8String], inner.c_str());
}

TEST_F(OpenPanelTest, MayBeCancelled) {
    pick(true);
    const ModalResponder responder([](NSWindow* window) { cancelOpenPanel(window); });
    EXPECT_EQ([panel runModal], NSModalResponseCancel);
    EXPECT_TRUE(responder.responded());
}

}  // namespace
