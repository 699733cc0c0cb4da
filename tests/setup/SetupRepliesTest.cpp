// What a reply does to the setup window, whichever action it answers.
#include "SetupSessionFixture.h"

#include "setup/SetupOutcomes.h"

#include <string>
#include <string_view>

namespace veltrix::test {
namespace {

constexpr std::string_view kFailed = "Setup request failed. Check certificate, consent and "
                                     "account approval; service was not started.";

class SetupReplies : public SetupSessionTest {
  protected:
    // What happens between the reply's arrival and the end of its handling.
    Entries entriesAfter(std::string_view action, const Reply& reply) {
        session().performSetupAction(action);
        static_cast<void>(journal.take());
        channel->answer(reply);
        return journal.take();
    }

    std::string statusAfter(const Reply& reply) {
        exchange("enrollment.poll", reply);
        return view->status;
    }
};

TEST_F(SetupReplies, EndTheBusyStateThenFreeTheControlsThenSpeak) {
    EXPECT_EQ(
        entriesAfter("tls.configure", code("tls_key_mismatch")),
        (Entries{"idle: controls on", "idle: status: Certificate and private key do not match."}));
}

TEST_F(SetupReplies, SayTheSentenceOfEveryCodeInTheTable) {
    for (const Outcome& outcome : setupOutcomes()) {
        EXPECT_EQ(statusAfter(code(outcome.code)), outcome.sentence);
        EXPECT_FALSE(session().busy());
        EXPECT_FALSE(session().paired());
        EXPECT_TRUE(view->controlsEnabled);
        EXPECT_FALSE(channel->hasClosing());
    }
}

TEST_F(SetupReplies, ToThePasswordClearItBeforeAnythingElse) {
    prepareLogin();
    EXPECT_EQ(entriesAfter("password.configure", code("setup_failed")),
              (Entries{"busy, paired: password cleared", "idle, paired: controls on",
                       "idle, paired: status: " + std::string(kFailed)}));
    EXPECT_EQ(view->typed.password, "");
}

TEST_F(SetupReplies, ToThePasswordClearItWhateverTheySay) {
    prepareLogin();
    const Reply failure{{"ok", Json(false)}, {"code", Json("setup_failed")}};
    for (const Reply& reply : {failure, Reply(), code("login_configured"), code("no_such_code"),
                               code("enrollment_paired"), code("tls_key_mismatch")}) {
        view->typed.password = "fifteen bytes!!";
        exchange("password.configure", reply);
        EXPECT_EQ(view->typed.password, "");
    }
}

TEST_F(SetupReplies, ToAnyOtherActionLeaveThePasswordAlone) {
    for (const char* action : {"tls.configure", "enrollment.start", "enrollment.poll",
                               "enrollment.resume", "enrollment.renew", "password.configure "}) {
        for (const char* outcome : {"setup_failed", "login_configured", "enrollment_paired"}) {
            view->typed.password = "typed already";
            exchange(action, code(outcome));
            EXPECT_EQ(view->typed.password, "typed already") << action << " " << outcome;
        }
    }
}

TEST_F(SetupReplies, ShowTheApprovalCodeOfAPendingApproval) {
    EXPECT_EQ(entriesAfter("enrollment.start", Reply{{"ok", Json(true)},
                                                     {"code", Json("enrollment_pending")},
                                                     {"userCode", Json("ABCD-1234")}}),
              (Entries{"idle: controls on", "idle: status: Account approval code: ABCD-1234"}));
}

TEST_F(SetupReplies, ShowTheApprovalCodeExactlyAsItCame) {
    for (const std::string& userCode : {std::string(), std::string("  x\t "), std::string("\n"),
                                        std::string("\"\u00E9\u20AC"), std::string(4000, 'Z')}) {
        EXPECT_EQ(
            statusAfter(Reply{{"code", Json("enrollment_pending")}, {"userCode", Json(userCode)}}),
            "Account approval code: " + userCode);
    }
}

TEST_F(SetupReplies, SayPendingWhenTheApprovalCodeIsMissingOrNoString) {
    const std::string pending = "Approval pending. Check again after the requested interval.";
    EXPECT_EQ(statusAfter(code("enrollment_pending")), pending);
    for (const Json& userCode : {Json(1234.0), Json(true), Json(), Json(Json::Array{Json("A")}),
                                 Json(Json::Object{{"userCode", Json("A")}})}) {
        EXPECT_EQ(statusAfter(Reply{{"code", Json("enrollment_pending")}, {"userCode", userCode}}),
                  pending);
    }
    EXPECT_EQ(statusAfter(Reply{{"code", Json("enrollment_pending")}, {"usercode", Json("A")}}),
              pending);
}

TEST_F(SetupReplies, ReadTheApprovalCodeForNothingElse) {
    EXPECT_EQ(statusAfter(Reply{{"code", Json("tls_key_mismatch")}, {"userCode", Json("A")}}),
              "Certificate and private key do not match.");
}

TEST_F(SetupReplies, PairTheWindowBeforeTheySaySo) {
    EXPECT_EQ(entriesAfter("enrollment.resume", code("enrollment_paired")),
              (Entries{"idle: controls on",
                       "idle, paired: status: Saved account approval validated. You can set the "
                       "DVR login."}));
}

TEST_F(SetupReplies, PairTheWindowWhateverTheyAnswer) {
    for (const char* action : {"tls.configure", "enrollment.start", "enrollment.poll",
                               "enrollment.resume", "enrollment.renew", "anything"}) {
        const auto window = std::make_shared<RecordingView>(journal);
        window->session = SetupSession::make(*window, channel, "");
        window->session->performSetupAction(action);
        channel->answer(code("enrollment_paired"));
        EXPECT_TRUE(window->session->paired()) << action;
    }
}

TEST_F(SetupReplies, NeverTakeThePairingBack) {
    prepareLogin();
    exchange("enrollment.poll", Reply{{"ok", Json(false)}, {"code", Json("setup_failed")}});
    EXPECT_TRUE(session().paired());
    exchange("enrollment.poll", Reply());
    exchange("enrollment.renew", code("saved_peer_missing"));
    exchange("enrollment.poll", code("enrollment_pending"));
    exchange("password.configure", code("login_configured"));
    EXPECT_TRUE(session().paired());
}

TEST_F(SetupReplies, SayTheLoginIsSetThenCloseTheChannel) {
    prepareLogin();
    EXPECT_EQ(entriesAfter("password.configure", code("login_configured")),
              (Entries{"busy, paired: password cleared", "idle, paired: controls on",
                       "idle, paired: status: DVR login configured. Service stays stopped.",
                       "idle, paired: close"}));
}

TEST_F(SetupReplies, LeaveTheWindowOpenAndUsableAfterTheLogin) {
    prepareLogin();
    exchange("password.configure", code("login_configured"));
    EXPECT_FALSE(session().busy());
    EXPECT_FALSE(session().closing());

    // The next request goes out at once, ahead of the news that the channel has shut down.
    session().performSetupAction("enrollment.renew");
    EXPECT_EQ(journal.take().back(), "busy, paired: request enrollment.renew {}");
    channel->finishClosing();
    EXPECT_EQ(journal.take(), Entries());
    EXPECT_TRUE(session().busy());
    channel->answer(code("saved_peer_missing"));
    EXPECT_FALSE(session().busy());
}

TEST_F(SetupReplies, CloseTheChannelOnceMoreWhenTheWindowClosesAfterTheLogin) {
    prepareLogin();
    exchange("password.configure", code("login_configured"));
    EXPECT_FALSE(session().windowShouldClose());
    EXPECT_EQ(journal.take(), (Entries{"busy, paired: password cleared", "busy, paired: close"}));
    channel->finishClosing();
    EXPECT_EQ(journal.take(), Entries()) << "the login's own closing ends no window";
    channel->finishClosing();
    EXPECT_EQ(journal.take(), Entries{"closed, paired: session ended"});
}

TEST_F(SetupReplies, CloseTheChannelForNoOtherCode) {
    for (const char* other : {"login_configured ", "Login_configured", "enrollment_paired",
                              "enrollment_pending", "tls_configured_stopped", "setup_failed"}) {
        exchange("enrollment.poll", code(other));
        EXPECT_FALSE(channel->hasClosing()) << other;
    }
}

TEST_F(SetupReplies, SayFailedForTheFailureReplyAndForAnEmptyObject) {
    EXPECT_EQ(statusAfter(Reply{{"ok", Json(false)}, {"code", Json("setup_failed")}}), kFailed);
    EXPECT_EQ(statusAfter(Reply()), kFailed);
}

TEST_F(SetupReplies, SayFailedWhenTheCodeIsMissingOrNoString) {
    EXPECT_EQ(statusAfter(Reply{{"ok", Json(true)}}), kFailed);
    for (const Json& value : {Json(7.0), Json(true), Json(), Json(Json::Array{}),
                              Json(Json::Object{{"code", Json("enrollment_paired")}})}) {
        EXPECT_EQ(statusAfter(Reply{{"ok", Json(true)}, {"code", value}}), kFailed);
    }
    EXPECT_FALSE(session().paired());
}

TEST_F(SetupReplies, SayFailedForUnknownCodesAndNearMisses) {
    for (const char* near : {"no_such_code", "", "tls_key", "TLS_KEY_MISMATCH", "enrollment_pair",
                             "Enrollment_Paired", "enrollment_paired2", "login", "ok"}) {
        EXPECT_EQ(statusAfter(code(near)), kFailed) << near;
    }
    EXPECT_FALSE(session().paired());
}

TEST_F(SetupReplies, NeverLookAtOk) {
    const std::string sentence =
        "Certificate validated; gateway stays stopped. Client devices must also trust its issuer.";
    EXPECT_EQ(statusAfter(code("tls_configured_stopped")), sentence);
    for (const Json& ok : {Json(true), Json(false), Json(), Json("yes"), Json(1.0)}) {
        EXPECT_EQ(statusAfter(Reply{{"ok", ok}, {"code", Json("tls_configured_stopped")}}),
                  sentence);
    }
    static_cast<void>(statusAfter(Reply{{"ok", Json(false)}, {"code", Json("enrollment_paired")}}));
    EXPECT_TRUE(session().paired());
}

TEST_F(SetupReplies, LetTheNextActionOutAtOnce) {
    for (const char* outcome : {"setup_failed", "enrollment_pending", "no_such_code",
                                "login_configured", "tls_key_permissions", "enrollment_paired"}) {
        exchange("enrollment.poll", code(outcome));
        session().performSetupAction("enrollment.poll");
        ASSERT_TRUE(channel->hasRequest()) << outcome;
        channel->answer(Reply());
    }
}

}  // namespace
}  // namespace veltrix::test
