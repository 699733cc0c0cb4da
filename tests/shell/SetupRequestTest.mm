// The buttons of the setup window: what each sends to the first-run process, what is locked
// meanwhile, and what its reply shows.
#include "shell/SetupWindowTest.h"

#include "common/Text.h"
#include "shell/Keyboard.h"
#include "shell/Layout.h"
#include "support/AppKitDriver.h"
#include "support/ChildReport.h"
#include "support/OpenPanel.h"

#include <unistd.h>

using namespace veltrix;
using namespace veltrix::test;

namespace {

constexpr const char* kLoginRefused =
    "Account approval, loopback gateway consent and a 15-128-byte password are required.";

class SetupRequestTest : public SetupWindowTest {
  protected:
    void SetUp() override { open(); }

    [[nodiscard]] Json::Object onlyRequest() const {
        const auto all = requests();
        EXPECT_EQ(all.size(), 1U);
        return all.empty() ? Json::Object() : all.back();
    }

    void tick(NSButton* checkBox) const { ASSERT_TRUE(press(checkBox)); }

    // Everything that setting the login needs but the password.
    void pairAndConsent() {
        firstRunDoes("answer {\"code\":\"enrollment_paired\"}\\n\n"
                     "answer-all {\"code\":\"setup_failed\"}\\n\n");
        pressToEnd(@"Resume Saved Approval");
        ASSERT_EQ(said(), "Saved account approval validated. You can set the DVR login.");
        tick([setup() trustProxy]);
    }
};

// --- What is sent ---------------------------------------------------------------------------

TEST_F(SetupRequestTest, ValidateTlsSendsThePathsAndTheConsentEvenIfEmpty) {
    pressToEnd(@"Validate TLS");
    EXPECT_EQ(actionOf(onlyRequest()), "tls.configure");
    EXPECT_EQ(valuesOf(onlyRequest()), (Json::Object{{"origin", Json("")},
                                                     {"certificateFile", Json("")},
                                                     {"keyFile", Json("")},
                                                     {"approveLocalCA", Json(false)}}));
    EXPECT_EQ(said(), "Certificate validated; gateway stays stopped. Client devices must also "
                      "trust its issuer.");
}

TEST_F(SetupRequestTest, ValidateTlsSendsACaOfOneSpaceAsItStands) {
    ASSERT_TRUE(typeInto([setup() certificate], @"/certs/chain é.pem"));
    ASSERT_TRUE(typeInto([setup() key], @"relative key"));
    ASSERT_TRUE(typeInto([setup() ca], @" "));
    tick([setup() trustCA]);
    pressToEnd(@"Validate TLS");
    EXPECT_EQ(valuesOf(onlyRequest()),
              (Json::Object{{"origin", Json("")},
                            {"certificateFile", Json("/certs/chain é.pem")},
                            {"keyFile", Json("relative key")},
                            {"approvedCAFile", Json(" ")},
                            {"approveLocalCA", Json(true)}}));
}

TEST_F(SetupRequestTest, RequestingApprovalSendsItsTwoFixedValues) {
    pressToEnd(@"Request Account Approval");
    EXPECT_EQ(actionOf(onlyRequest()), "enrollment.start");
    EXPECT_EQ(valuesOf(onlyRequest()),
              (Json::Object{{"name", Json("Desktop DVR")}, {"recordingAccess", Json("private")}}));
}

TEST_F(SetupRequestTest, TheOtherApprovalButtonsSendNothingButTheirName) {
    pressToEnd(@"Check Approval");
    pressToEnd(@"Resume Saved Approval");
    pressToEnd(@"Renew Saved Approval");
    const auto all = requests();
    ASSERT_EQ(all.size(), 3U);
    EXPECT_EQ(actionOf(all[0]), "enrollment.poll");
    EXPECT_EQ(actionOf(all[1]), "enrollment.resume");
    EXPECT_EQ(actionOf(all[2]), "enrollment.renew");
    for (const Json::Object& request : all) {
        EXPECT_EQ(request.at("values"), Json(Json::Object()));
    }
}

TEST_F(SetupRequestTest, WhatIsStillBeingTypedIsSent) {
    beginTyping([setup() certificate], @"/half/typed");
    pressToEnd(@"Validate TLS");
    EXPECT_EQ(*stringMember(valuesOf(onlyRequest()), "certificateFile"), "/half/typed");
}

TEST_F(SetupRequestTest, AButtonWithoutAnActionSendsNothing) {
    [setup() performSetupAction:[NSButton buttonWithTitle:@"Nothing" target:nil action:nullptr]];
    EXPECT_EQ(said(), "DVR stays stopped during setup.");
    EXPECT_TRUE(controlsEnabled());
}

// --- The login ------------------------------------------------------------------------------

TEST_F(SetupRequestTest, TheLoginIsRefusedBeforeAnApprovalAndSendsNothing) {
    tick([setup() trustProxy]);
    ASSERT_TRUE(typeInto([setup() password], @"fifteen bytes!!"));
    ASSERT_TRUE(pressButtonTitled(panel(), @"Set DVR Login"));
    EXPECT_EQ(said(), kLoginRefused);
    EXPECT_TRUE(controlsEnabled());
    EXPECT_EQ(textOf([setup() password]), "fifteen bytes!!");
    EXPECT_TRUE(requests().empty());
}

TEST_F(SetupRequestTest, TheLoginIsRefusedWithoutTheConsent) {
    pairAndConsent();
    tick([setup() trustProxy]);  // and off again
    ASSERT_TRUE(typeInto([setup() password], @"fifteen bytes!!"));
    ASSERT_TRUE(pressButtonTitled(panel(), @"Set DVR Login"));
    EXPECT_EQ(said(), kLoginRefused);
    EXPECT_EQ(requests().size(), 1U);
}

TEST_F(SetupRequestTest, ThePasswordIsMeasuredInBytes) {
    const auto times = [](const char* text, int count) {
        std::string result;
        for (int i = 0; i < count; ++i) {
            result += text;
        }
        return result;
    };
    pairAndConsent();
    std::size_t sent = requests().size();
    for (const std::string& refused :
         {times("x", 14), times("x", 129), times("€", 43), std::string()}) {
        ASSERT_TRUE(typeInto([setup() password], toNSString(refused)));
        ASSERT_TRUE(pressButtonTitled(panel(), @"Set DVR Login"));
        EXPECT_EQ(said(), kLoginRefused) << refused.size();
        EXPECT_EQ(textOf([setup() password]), refused);
        EXPECT_EQ(requests().size(), sent);
    }
    for (const std::string& accepted : {times("x", 15), times("x", 128), times("é", 8)}) {
        ASSERT_TRUE(typeInto([setup() username], @"sam"));
        ASSERT_TRUE(typeInto([setup() password], toNSString(accepted)));
        pressToEnd(@"Set DVR Login");
        ASSERT_EQ(requests().size(), ++sent) << accepted.size();
        EXPECT_EQ(actionOf(requests().back()), "password.configure");
        EXPECT_EQ(valuesOf(requests().back()), (Json::Object{{"username", Json("sam")},
                                                             {"password", Json(accepted)},
                                                             {"trustLocalProxy", Json(true)}}));
    }
}

TEST_F(SetupRequestTest, APasswordThatIsStillBeingTypedCounts) {
    pairAndConsent();
    beginTyping([setup() password], @"typed, not entered");
    pressToEnd(@"Set DVR Login");
    EXPECT_EQ(*stringMember(valuesOf(requests().back()), "password"), "typed, not entered");
}

TEST_F(SetupRequestTest, AnyReplyToTheLoginWipesThePasswordAndNoOtherReplyDoes) {
    pairAndConsent();
    ASSERT_TRUE(typeInto([setup() password], @"fifteen bytes!!"));
    pressToEnd(@"Validate TLS");
    EXPECT_EQ(textOf([setup() password]), "fifteen bytes!!");
    ASSERT_TRUE(pressButtonTitled(panel(), @"Set DVR Login"));
    EXPECT_EQ(textOf([setup() password]), "fifteen bytes!!");  // not when it is sent
    ASSERT_TRUE(pumpUntil([this] { return controlsEnabled(); }));
    EXPECT_EQ(textOf([setup() password]), "");
    EXPECT_EQ(said(), "Setup request failed. Check certificate, consent and account approval; "
                      "service was not started.");
}

TEST_F(SetupRequestTest, AWipedPasswordDoesNotComeBackFromAnEditorThatWasOpen) {
    pairAndConsent();
    beginTyping([setup() password], @"typed, not entered");
    pressToEnd(@"Set DVR Login");
    EXPECT_EQ(textOf([setup() password]), "");
    [[setup() password] validateEditing];
    [panel() makeFirstResponder:nil];
    EXPECT_EQ(textOf([setup() password]), "");
}

TEST_F(SetupRequestTest, AConfiguredLoginEndsTheProcessAndTheNextRequestStartsAnother) {
    const std::string report = resources.scratch("report");
    firstRunDoes("report " + report + "\nanswer-all {\"code\":\"login_configured\"}\\n\n");
    pressToEnd(@"Check Approval");
    EXPECT_EQ(said(), "DVR login configured. Service stays stopped.");
    const pid_t first = awaitReport(report).pid;
    ASSERT_EQ(::unlink(report.c_str()), 0);
    EXPECT_TRUE((bool)[panel() isVisible]);
    pressToEnd(@"Check Approval");
    EXPECT_NE(awaitReport(report).pid, first);
}

// --- While a request is under way -----------------------------------------------------------

TEST_F(SetupRequestTest, LocksItsControlsAndDropsFurtherRequests) {
    firstRunDoes("answer\nawait " + resources.scratch("released") +
                 "\nprint {\"code\":\"tls_key_mismatch\"}\\n\n");
    ASSERT_TRUE(pressButtonTitled(panel(), @"Validate TLS"));
    EXPECT_EQ(said(), "Working...");
    EXPECT_FALSE(anyControlEnabled());
    EXPECT_FALSE(pressButtonTitled(panel(), @"Check Approval"));
    [setup() performSetupAction:buttonTitled(panel(), @"Check Approval")];
    EXPECT_EQ(said(), "Working...");

    ASSERT_TRUE(pressButtonTitled(panel(), @"Manage Account"));
    ASSERT_EQ(opened.list().size(), 1U);
    EXPECT_TRUE(opened.list()[0].starts_with("https://")) << opened.list()[0];
    EXPECT_TRUE(opened.list()[0].ends_with("/manage")) << opened.list()[0];
    EXPECT_EQ(said(), "Working...");

    release();
    ASSERT_TRUE(pumpUntil([this] { return controlsEnabled(); }));
    EXPECT_EQ(said(), "Certificate and private key do not match.");
    EXPECT_EQ(requests().size(), 1U);
}

TEST_F(SetupRequestTest, UnlocksAfterEveryReply) {
    const char* const kReplies[] = {R"({"ok":true,"code":"tls_configured_stopped"})",
                                    R"({"ok":false,"code":"no such code"})",
                                    R"({"code":7})",
                                    R"({})",
                                    R"([])",
                                    "nonsense"};
    std::string steps;
    for (const char* const reply : kReplies) {
        steps += "answer " + std::string(reply) + "\\n\n";
    }
    firstRunDoes(steps);
    std::size_t sent = 0;
    for (const char* const reply : kReplies) {
        SCOPED_TRACE(reply);
        pressToEnd(@"Validate TLS");
        EXPECT_NE(said(), "Working...");
        EXPECT_EQ(requests().size(), ++sent);
    }
}

TEST_F(SetupRequestTest, ShowsTheApprovalCodeOrThatOneIsPending) {
    firstRunDoes(R"(answer {"code":"enrollment_pending","userCode":"ABCD-1234"}\n)"
                 "\n"
                 R"(answer {"code":"enrollment_pending"}\n)"
                 "\n"
                 R"(answer {"code":"enrollment_pending","userCode":1234}\n)"
                 "\n");
    pressToEnd(@"Request Account Approval");
    EXPECT_EQ(said(), "Account approval code: ABCD-1234");
    for (int i = 0; i < 2; ++i) {
        pressToEnd(@"Check Approval");
        EXPECT_EQ(said(), "Approval pending. Check again after the requested interval.");
    }
}

TEST_F(SetupRequestTest, ShowsTheLongestSentenceInFull) {
    firstRunReplies(R"({"code":"saved_peer_reapproval_required"})");
    resizeContent(panel(), 640, 520);
    pressToEnd(@"Renew Saved Approval");
    [[panel() contentView] layoutSubtreeIfNeeded];
    EXPECT_TRUE(said().starts_with("Renewal requires owner reapproval.")) << said();
    EXPECT_GE(NSHeight([[setup() status] frame]), neededHeight([setup() status]));
}

// --- Choosing files -------------------------------------------------------------------------

class SetupChooserTest : public SetupRequestTest {
  protected:
    void choose(NSButton* button, std::function<void(NSOpenPanel*)> respond) {
        const ModalResponder responder(
            [&respond](NSWindow* shown) { respond(dynamicCast<NSOpenPanel>(shown)); });
        ASSERT_TRUE(press(button));
        EXPECT_TRUE(responder.responded());
    }

    [[nodiscard]] std::vector<std::string> paths() const {
        return {textOf([setup() certificate]), textOf([setup() key]), textOf([setup() ca]),
                textOf([setup() username])};
    }
};

TEST_F(SetupChooserTest, TakesOneFileAndNoFolderForEveryField) {
    for (NSString* const field : {@"cert", @"key", @"ca"}) {
        choose(buttonIdentified(panel(), field), [](NSOpenPanel* open) {
            EXPECT_TRUE((bool)[open canChooseFiles]);
            EXPECT_FALSE((bool)[open canChooseDirectories]);
            EXPECT_FALSE((bool)[open allowsMultipleSelection]);
            cancelOpenPanel(open);
        });
    }
}

TEST_F(SetupChooserTest, CancellingKeepsTheText) {
    ASSERT_TRUE(typeInto([setup() key], @"/typed/key.pem"));
    choose(buttonIdentified(panel(), @"key"), [](NSOpenPanel* open) { cancelOpenPanel(open); });
    EXPECT_EQ(paths(), (std::vector<std::string>{"", "/typed/key.pem", "", ""}));
}

TEST_F(SetupChooserTest, AChosenFileFillsItsOwnFieldOnly) {
    const TempFolder folder;
    std::vector<std::string> expected{"", "", "", ""};
    const std::pair<NSString*, std::size_t> kFields[] = {
        {@"key", 1}, {@"ca", 2}, {@"cert", 0}, {@"unheard of", 0}, {nil, 0}};
    for (const auto& [identifier, index] : kFields) {
        NSButton* const button = [NSButton buttonWithTitle:@"Choose..."
                                                    target:setup()
                                                    action:@selector(choose:)];
        [button setIdentifier:identifier];
        [[panel() contentView] addSubview:button];
        expected[index] = folder.write("file " + std::to_string(&identifier - &kFields[0].first),
                                       "not looked at");
        choose(button, [&, path = expected[index]](NSOpenPanel* open) {
            EXPECT_TRUE(chooseInOpenPanel(open, toNSString(path)));
        });
        EXPECT_EQ(paths(), expected);
        [button removeFromSuperview];
    }
    EXPECT_TRUE(requests().empty());
}

}  // namespace
