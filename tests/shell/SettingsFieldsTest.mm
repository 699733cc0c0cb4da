// What the form is filled with at launch, and what saving it does.
#include "shell/ShellTest.h"

#include "common/Text.h"
#include "shell/Keyboard.h"
#include "support/AppKitDriver.h"

#include <filesystem>
#include <fstream>

using namespace veltrix;
using namespace veltrix::test;

namespace {

constexpr const char* kRefused =
    "Choose an absolute installation folder and an executable Node 22+ runtime.";

class SettingsFieldsTest : public ShellTest {
  protected:
    void install() const {
        std::filesystem::create_directories(installation());
        std::ofstream(installation() + "/installation.json") << "{}";
    }

    void expectRefused() {
        EXPECT_EQ(status(), kRefused);
        EXPECT_TRUE(settings->writes.empty());
        EXPECT_FALSE([app busy]);
        EXPECT_TRUE((bool)[window() isVisible]);
    }
};

TEST_F(SettingsFieldsTest, AFirstRunOffersTheUsersFolderAndTheBundledRuntime) {
    settings->values.clear();
    launch();
    const std::string folder =
        resources.scratch("user") + "/Library/Application Support/VeltrixHomeDVR";
    EXPECT_EQ(textOf([app home]), folder);
    EXPECT_EQ(textOf([app node]), resources.node());
    EXPECT_EQ(textOf([app storage]), folder + "/data");
    EXPECT_EQ(textOf([app retention]), "30");
    EXPECT_TRUE(settings->writes.empty());
}

TEST_F(SettingsFieldsTest, WithoutARuntimeInTheBundleTheSystemsIsOffered) {
    std::filesystem::remove(resources.node());
    launch();
    EXPECT_EQ(textOf([app node]), "/usr/local/bin/node");
}

TEST_F(SettingsFieldsTest, WithoutAnInstallationTheBundledRuntimeReplacesTheStoredOneInTheField) {
    settings->values.insert_or_assign("nodeExecutable", "/opt/node");
    launch();
    EXPECT_EQ(textOf([app node]), resources.node());
    EXPECT_EQ(settings->values.at("nodeExecutable"), "/opt/node");
    [app perform:"save"];
    EXPECT_EQ(settings->values.at("nodeExecutable"), resources.node());
}

TEST_F(SettingsFieldsTest, AnInstallationKeepsTheRuntimeItWasSetUpWith) {
    install();
    settings->values.insert_or_assign("nodeExecutable", "/opt/node");
    launch();
    EXPECT_EQ(textOf([app node]), "/opt/node");
}

TEST_F(SettingsFieldsTest, AFolderThatEndsInASlashGetsADoubledOne) {
    install();
    settings->values.insert_or_assign("installationHome", installation() + "/");
    settings->values.insert_or_assign("nodeExecutable", "/opt/node");
    launch();
    EXPECT_EQ(textOf([app home]), installation() + "/");
    EXPECT_EQ(textOf([app storage]), installation() + "//data");
    EXPECT_EQ(textOf([app node]), "/opt/node");  // the marker was found all the same
}

TEST_F(SettingsFieldsTest, SavingStoresTheFolderAndThenTheRuntime) {
    launch();
    ASSERT_TRUE(pressButtonTitled(window(), @"Save"));
    EXPECT_EQ(status(), "Desktop settings saved. Service unchanged.");
    EXPECT_EQ(settings->writes, (std::vector<std::string>{"installationHome=" + installation(),
                                                          "nodeExecutable=" + resources.node()}));
}

TEST_F(SettingsFieldsTest, ARefusalSaysSoStoresNothingAndBringsTheWindowForward) {
    launch();
    ASSERT_TRUE(typeInto([app node], @"/nonexistent/node"));
    pressCloseButton(window());
    ASSERT_TRUE(pumpUntil([this] { return ![window() isVisible]; }));
    ASSERT_TRUE(chooseMenuItem(menu(), @"Dashboard"));
    expectRefused();
    EXPECT_TRUE(pumpUntil([this] { return (bool)[window() isKeyWindow]; }));
}

TEST_F(SettingsFieldsTest, ARelativeRuntimeIsRefusedEvenIfItWouldBeFound) {
    launch();
    ASSERT_TRUE(typeInto([app node], @"sh"));
    ASSERT_TRUE(pressButtonTitled(window(), @"Save"));
    expectRefused();
}

TEST_F(SettingsFieldsTest, AFolderWithAControlCharacterOrAQuoteIsRefusedAndAnyOtherNameIsNot) {
    launch();
    for (const char* const bad : {"\t", "\x7f", "\""}) {
        [[app home] setStringValue:toNSString(installation() + bad)];
        [app perform:"save"];
        expectRefused();
    }
    const std::string accepted = installation() + " \xc3\xa9 'x' \xf0\x9f\x8e\xac";
    [[app home] setStringValue:toNSString(accepted)];
    [app perform:"save"];
    EXPECT_EQ(status(), "Desktop settings saved. Service unchanged.");
    EXPECT_EQ(settings->values.at("installationHome"), accepted);
}

TEST_F(SettingsFieldsTest, TextThatIsStillBeingTypedCounts) {
    launch();
    beginTyping([app home], @"/typed/but/not/entered");
    ASSERT_NE([[app home] currentEditor], nil);
    [app perform:"save"];
    EXPECT_EQ(settings->values.at("installationHome"), "/typed/but/not/entered");
}

TEST_F(SettingsFieldsTest, AnInvalidTextThatIsStillBeingTypedIsRefused) {
    launch();
    beginTyping([app node], @"node");
    [app perform:"save"];
    expectRefused();
}

TEST_F(SettingsFieldsTest, WhatIsStoredIsNotReloadedWhenTheWindowComesBack) {
    launch();
    settings->values.insert_or_assign("installationHome", "/changed/behind");
    pressCloseButton(window());
    [app showSettings];
    EXPECT_EQ(textOf([app home]), installation());
}

}  // namespace
