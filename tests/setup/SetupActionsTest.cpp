// What each setup button sends, and when the login may be set.
#include "setup/SetupActions.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <utility>

namespace veltrix::test {
namespace {

constexpr std::string_view kOrigin = "https://dvr.example:8443";

std::string repeated(std::string_view piece, int times) {
    std::string text;
    for (int count = 0; count < times; ++count) {
        text += piece;
    }
    return text;
}

// Every member has a value of its own, so that a mix-up shows.
SetupForm filledForm() {
    SetupForm form;
    form.certificate = "/pem/chain.pem";
    form.key = "/pem/key.pem";
    form.ca = "/pem/ca.pem";
    form.username = "owner";
    form.password = "fifteen bytes!!";
    form.trustCA = true;
    form.trustProxy = true;
    return form;
}

Json::Object valuesOf(std::string_view action, const SetupForm& form) {
    return setupValues(action, form, std::string(kOrigin));
}

TEST(SetupValues, OfValidateTlsAreOriginPathsAndConsent) {
    EXPECT_EQ(valuesOf("tls.configure", filledForm()),
              (Json::Object{{"origin", Json(kOrigin)},
                            {"certificateFile", Json("/pem/chain.pem")},
                            {"keyFile", Json("/pem/key.pem")},
                            {"approveLocalCA", Json(true)},
                            {"approvedCAFile", Json("/pem/ca.pem")}}));
}

TEST(SetupValues, OfValidateTlsLeaveOutAnEmptyCaButNotTheConsent) {
    for (const bool consent : {true, false}) {
        SetupForm form = filledForm();
        form.ca.clear();
        form.trustCA = consent;
        EXPECT_EQ(valuesOf("tls.configure", form),
                  (Json::Object{{"origin", Json(kOrigin)},
                                {"certificateFile", Json("/pem/chain.pem")},
                                {"keyFile", Json("/pem/key.pem")},
                                {"approveLocalCA", Json(consent)}}));
    }
}

TEST(SetupValues, OfValidateTlsCountASingleSpaceAsACa) {
    SetupForm form = filledForm();
    form.ca = " ";
    form.trustCA = false;
    EXPECT_EQ(valuesOf("tls.configure", form),
              (Json::Object{{"origin", Json(kOrigin)},
                            {"certificateFile", Json("/pem/chain.pem")},
                            {"keyFile", Json("/pem/key.pem")},
                            {"approveLocalCA", Json(false)},
                            {"approvedCAFile", Json(" ")}}));
}

TEST(SetupValues, OfValidateTlsGoOutWithNothingFilledIn) {
    EXPECT_EQ(setupValues("tls.configure", SetupForm(), ""),
              (Json::Object{{"origin", Json("")},
                            {"certificateFile", Json("")},
                            {"keyFile", Json("")},
                            {"approveLocalCA", Json(false)}}));
}

TEST(SetupValues, OfValidateTlsAreExactlyAsTyped) {
    SetupForm form;
    form.certificate = "  ~/chain.pem\t";
    form.key = "/k\xC3\xA9y \"quoted\"\\.pem ";
    form.ca = "\n";
    EXPECT_EQ(setupValues("tls.configure", form, " https://dvr.example/ "),
              (Json::Object{{"origin", Json(" https://dvr.example/ ")},
                            {"certificateFile", Json("  ~/chain.pem\t")},
                            {"keyFile", Json("/k\xC3\xA9y \"quoted\"\\.pem ")},
                            {"approveLocalCA", Json(false)},
                            {"approvedCAFile", Json("\n")}}));
}

TEST(SetupValues, OfRequestApprovalAreTwoConstants) {
    const Json::Object constants{{"name", Json("Desktop DVR")},
                                 {"recordingAccess", Json("private")}};
    EXPECT_EQ(valuesOf("enrollment.start", filledForm()), constants);
    EXPECT_EQ(setupValues("enrollment.start", SetupForm(), ""), constants);
}

TEST(SetupValues, OfSetLoginAreUserPasswordAndAConstantTrust) {
    SetupForm form = filledForm();
    const Json::Object values{{"username", Json("owner")},
                              {"password", Json("fifteen bytes!!")},
                              {"trustLocalProxy", Json(true)}};
    EXPECT_EQ(valuesOf("password.configure", form), values);
    // The consent for the local CA plays no part, and the trust that is sent is a constant.
    form.trustCA = false;
    form.trustProxy = false;
    EXPECT_EQ(valuesOf("password.configure", form), values);
}

TEST(SetupValues, OfEveryOtherActionAreEmpty) {
    for (const std::string_view action :
         {"enrollment.poll", "enrollment.resume", "enrollment.renew", "", "tls", "tls.configure ",
          "TLS.configure", "Password.configure", "enrollment.started", "start"}) {
        EXPECT_EQ(valuesOf(action, filledForm()), Json::Object()) << '"' << action << '"';
    }
}

// The form with everything the login needs but this password.
SetupForm formWithPassword(std::string password) {
    SetupForm form;
    form.trustProxy = true;
    form.password = std::move(password);
    return form;
}

TEST(LoginAllowed, ForPasswordsOf15To128Bytes) {
    EXPECT_FALSE(loginAllowed(true, formWithPassword("")));
    EXPECT_FALSE(loginAllowed(true, formWithPassword(repeated("a", 14))));
    EXPECT_TRUE(loginAllowed(true, formWithPassword(repeated("a", 15))));
    EXPECT_TRUE(loginAllowed(true, formWithPassword(repeated("a", 128))));
    EXPECT_FALSE(loginAllowed(true, formWithPassword(repeated("a", 129))));
}

TEST(LoginAllowed, CountsBytesOfUtf8AndNotCharacters) {
    EXPECT_TRUE(loginAllowed(true, formWithPassword(repeated("\u00E9", 8))));    // 16 bytes
    EXPECT_FALSE(loginAllowed(true, formWithPassword(repeated("\u00E9", 7))));   // 14 bytes
    EXPECT_TRUE(loginAllowed(true, formWithPassword(repeated("\u20AC", 42))));   // 126 bytes
    EXPECT_FALSE(loginAllowed(true, formWithPassword(repeated("\u20AC", 43))));  // 129 bytes
}

TEST(LoginAllowed, TakesSpacesForBytesLikeAnyOther) {
    EXPECT_TRUE(loginAllowed(true, formWithPassword(repeated(" ", 15))));
}

TEST(LoginAllowed, OnlyWithAllThreeConditions) {
    for (const bool paired : {false, true}) {
        for (const bool consent : {false, true}) {
            for (const bool goodLength : {false, true}) {
                SetupForm form;
                form.trustProxy = consent;
                form.password = repeated("p", goodLength ? 20 : 3);
                EXPECT_EQ(loginAllowed(paired, form), paired && consent && goodLength)
                    << paired << consent << goodLength;
            }
        }
    }
}

TEST(LoginAllowed, WithoutConsentToTheLocalCaAndWithoutAUserName) {
    SetupForm form = formWithPassword(repeated("p", 15));
    form.trustCA = false;
    form.username.clear();
    EXPECT_TRUE(loginAllowed(true, form));
    // Consent to the CA is no consent to the gateway.
    form.trustCA = true;
    form.trustProxy = false;
    EXPECT_FALSE(loginAllowed(true, form));
}

}  // namespace
}  // namespace veltrix::test
