// What a setup session sends, when it may close, and what it keeps alive meanwhile.
#include "SetupSessionFixture.h"

#include <string>
#include <string_view>

namespace veltrix::test {
namespace {

constexpr const char* kRefusal = "idle: status: Account approval, loopback gateway consent and a "
                                 "15-128-byte password are required.";
constexpr const char* kPairedRefusal = "idle, paired: status: Account approval, loopback gateway "
                                       "consent and a 15-128-byte password are required.";

TEST_F(SetupSessionTest, StartsIdleUnpairedAndWithoutACall) {
    EXPECT_FALSE(session().busy());
    EXPECT_FALSE(session().paired());
    EXPECT_FALSE(session().closing());
    EXPECT_EQ(session().origin(), kOrigin);
    EXPECT_EQ(journal.take(), Entries());
}

TEST_F(SetupSessionTest, LocksTheControlsThenSaysWorkingThenSends) {
    session().performSetupAction("enrollment.poll");
    EXPECT_EQ(journal.take(), (Entries{"busy: controls off", "busy: status: Working...",
                                       "busy: request enrollment.poll {}"}));
}

TEST_F(SetupSessionTest, SendsEachActionWithItsValues) {
    view->typed.certificate = "/chain.pem";
    view->typed.key = "/key.pem";
    const std::pair<const char*, const char*> agreed[] = {
        {"tls.configure", R"({"approveLocalCA":false,"certificateFile":"/chain.pem",)"
                          R"("keyFile":"/key.pem","origin":"https://dvr.example:8443"})"},
        {"enrollment.start", R"({"name":"Desktop DVR","recordingAccess":"private"})"},
        {"enrollment.poll", "{}"},
        {"enrollment.resume", "{}"},
        {"enrollment.renew", "{}"},
    };
    for (const auto& [action, values] : agreed) {
        session().performSetupAction(action);
        EXPECT_EQ(journal.take().back(), "busy: request " + std::string(action) + " " + values);
        channel->answer(code("setup_failed"));
    }
}

TEST_F(SetupSessionTest, SendsAnActionItDoesNotKnowWithEmptyValues) {
    for (const char* action : {"enrollment.stop", "Password.configure", "password.configure "}) {
        session().performSetupAction(action);
        EXPECT_EQ(journal.take().back(), "busy: request " + std::string(action) + " {}");
        channel->answer(code("setup_failed"));
    }
}

TEST_F(SetupSessionTest, SendsValidateTlsWithNothingFilledIn) {
    session().performSetupAction("tls.configure");
    EXPECT_EQ(journal.take().back(),
              R"(busy: request tls.configure {"approveLocalCA":false,"certificateFile":"",)"
              R"("keyFile":"","origin":"https://dvr.example:8443"})");
}

TEST_F(SetupSessionTest, TakesTheFormAsItStandsAtEachRequest) {
    exchange("tls.configure", code("tls_key_mismatch"));
    view->typed.ca = " ";
    view->typed.trustCA = true;
    session().performSetupAction("tls.configure");
    EXPECT_EQ(journal.take().back(),
              R"(busy: request tls.configure {"approveLocalCA":true,"approvedCAFile":" ",)"
              R"("certificateFile":"","keyFile":"","origin":"https://dvr.example:8443"})");
}

TEST_F(SetupSessionTest, SetsTheLoginOnceEverythingIsGiven) {
    prepareLogin();
    session().performSetupAction("password.configure");
    EXPECT_EQ(journal.take(),
              (Entries{"busy, paired: controls off", "busy, paired: status: Working...",
                       R"(busy, paired: request password.configure {"password":)"
                       R"("fifteen bytes!!","trustLocalProxy":true,"username":"owner"})"}));
}

TEST_F(SetupSessionTest, KeepsThePasswordInItsFieldWhileTheRequestRuns) {
    prepareLogin();
    session().performSetupAction("password.configure");
    EXPECT_EQ(view->typed.password, "fifteen bytes!!");
}

TEST_F(SetupSessionTest, RefusesTheLoginBeforeAnApproval) {
    view->typed.trustProxy = true;
    view->typed.password = "fifteen bytes!!";
    session().performSetupAction("password.configure");
    EXPECT_EQ(journal.take(), Entries{kRefusal});
    EXPECT_FALSE(channel->hasRequest());
}

TEST_F(SetupSessionTest, RefusesTheLoginWithoutConsentToTheGateway) {
    prepareLogin();
    view->typed.trustProxy = false;
    view->typed.trustCA = true;
    session().performSetupAction("password.configure");
    EXPECT_EQ(journal.take(), Entries{kPairedRefusal});
}

TEST_F(SetupSessionTest, RefusesAPasswordThatIsTooShortOrTooLongAndLeavesItInItsField) {
    prepareLogin();
    for (const std::string& password : {std::string(14, 'p'), std::string(129, 'p')}) {
        view->typed.password = password;
        session().performSetupAction("password.configure");
        EXPECT_EQ(journal.take(), Entries{kPairedRefusal});
        EXPECT_EQ(view->typed.password, password);
        EXPECT_TRUE(view->controlsEnabled);
        EXPECT_FALSE(session().busy());
    }
}

TEST_F(SetupSessionTest, AcceptsTheShortestAndTheLongestPassword) {
    prepareLogin();
    for (const std::size_t length : {15, 128}) {
        view->typed.password = std::string(length, 'p');
        session().performSetupAction("password.configure");
        ASSERT_TRUE(channel->hasRequest()) << length;
        channel->answer(code("setup_failed"));
    }
}

TEST_F(SetupSessionTest, MayBeAskedAgainRightAfterARefusal) {
    session().performSetupAction("password.configure");
    session().performSetupAction("enrollment.resume");
    EXPECT_TRUE(channel->hasRequest());
}

TEST_F(SetupSessionTest, IgnoresEveryButtonWithoutAWordWhileRequesting) {
    session().performSetupAction("enrollment.start");
    static_cast<void>(journal.take());
    for (const auto& row : kSetupButtonRows) {
        for (const SetupButton& button : row) {
            session().performSetupAction(button.action);
        }
    }
    EXPECT_EQ(journal.take(), Entries());
}

TEST_F(SetupSessionTest, RefusesToCloseWhileRequesting) {
    prepareLogin();
    session().performSetupAction("enrollment.poll");
    static_cast<void>(journal.take());

    EXPECT_FALSE(session().windowShouldClose());
    EXPECT_EQ(journal.take(), Entries{"busy, paired: status: Wait for the current setup request."});
    EXPECT_FALSE(channel->hasClosing());
    EXPECT_EQ(view->typed.password, "fifteen bytes!!");
}

TEST_F(SetupSessionTest, AnswersTheRequestThatACloseAttemptWaitedFor) {
    session().performSetupAction("enrollment.poll");
    EXPECT_FALSE(session().windowShouldClose());
    channel->answer(code("enrollment_paired"));
    EXPECT_EQ(view->status, "Saved account approval validated. You can set the DVR login.");

    EXPECT_FALSE(session().windowShouldClose());
    EXPECT_TRUE(channel->hasClosing());
}

TEST_F(SetupSessionTest, ClosesTheChannelBeforeTheWindowAndDisablesNothing) {
    view->typed.password = "half a password";
    EXPECT_FALSE(session().windowShouldClose());
    EXPECT_EQ(journal.take(), (Entries{"busy: password cleared", "busy: close"}));
    EXPECT_EQ(view->typed.password, "");
    EXPECT_TRUE(view->controlsEnabled);
    EXPECT_FALSE(session().closing());

    channel->finishClosing();
    EXPECT_EQ(journal.take(), Entries{"closed: session ended"});
    EXPECT_TRUE(session().closing());
}

TEST_F(SetupSessionTest, SaysWaitAtASecondCloseAndClosesOnce) {
    EXPECT_FALSE(session().windowShouldClose());
    EXPECT_FALSE(session().windowShouldClose());
    EXPECT_EQ(journal.take(), (Entries{"busy: password cleared", "busy: close",
                                       "busy: status: Wait for the current setup request."}));
    channel->finishClosing();
    EXPECT_EQ(journal.take(), Entries{"closed: session ended"});
    EXPECT_FALSE(channel->hasClosing());
}

TEST_F(SetupSessionTest, IgnoresEveryButtonWithoutAWordWhileClosingAndAfterwards) {
    prepareLogin();
    EXPECT_FALSE(session().windowShouldClose());
    for (const bool closed : {false, true}) {
        if (closed) {
            channel->finishClosing();
        }
        static_cast<void>(journal.take());
        for (const auto& row : kSetupButtonRows) {
            for (const SetupButton& button : row) {
                session().performSetupAction(button.action);
            }
        }
        EXPECT_EQ(journal.take(), Entries());
    }
}

TEST_F(SetupSessionTest, LetsTheWindowGoOnceTheChannelHasShutDown) {
    EXPECT_FALSE(session().windowShouldClose());
    channel->finishClosing();
    static_cast<void>(journal.take());
    EXPECT_TRUE(session().windowShouldClose());
    EXPECT_TRUE(session().windowShouldClose());
    EXPECT_EQ(journal.take(), Entries());
    EXPECT_TRUE(session().busy());
}

// The window is dropped by its creator while work is under way.
class SetupWindowLifetime : public SetupSessionTest {
  protected:
    std::weak_ptr<RecordingView> dropWindow() { return std::exchange(view, nullptr); }
};

TEST_F(SetupWindowLifetime, LastsUntilTheReplyHasBeenHandled) {
    session().performSetupAction("enrollment.poll");
    const std::weak_ptr<RecordingView> window = dropWindow();
    ASSERT_FALSE(window.expired());
    static_cast<void>(journal.take());

    channel->answer(code("enrollment_paired"));
    EXPECT_EQ(journal.take(), (Entries{"idle: controls on",
                                       "idle, paired: status: Saved account approval validated. "
                                       "You can set the DVR login."}));
    EXPECT_TRUE(window.expired());
}

TEST_F(SetupWindowLifetime, LastsUntilTheClosingIsDone) {
    EXPECT_FALSE(session().windowShouldClose());
    const std::weak_ptr<RecordingView> window = dropWindow();
    ASSERT_FALSE(window.expired());
    static_cast<void>(journal.take());

    channel->finishClosing();
    EXPECT_EQ(journal.take(), Entries{"closed: session ended"});
    EXPECT_TRUE(window.expired());
}

TEST_F(SetupWindowLifetime, EndsAtOnceWithNothingUnderWay) {
    exchange("enrollment.poll", code("enrollment_pending"));
    EXPECT_TRUE(dropWindow().expired());
}

TEST_F(SetupWindowLifetime, IsNotProlongedByAnActionThatWasRefused) {
    session().performSetupAction("password.configure");
    EXPECT_TRUE(dropWindow().expired());
}

// After the login was set nobody waits for the channel to shut down, so nothing is held.
TEST_F(SetupWindowLifetime, DoesNotDependOnTheShutdownThatFollowsALogin) {
    prepareLogin();
    exchange("password.configure", code("login_configured"));
    ASSERT_TRUE(channel->hasClosing());
    EXPECT_TRUE(dropWindow().expired());
    channel->finishClosing();
    EXPECT_EQ(journal.take(), Entries());
}

}  // namespace
}  // namespace veltrix::test
