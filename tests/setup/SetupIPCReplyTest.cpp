// What counts as a reply, byte by byte.
#include "SetupIPCFixture.h"

#include <cstdio>
#include <string>
#include <string_view>

namespace veltrix::test {
namespace {

// As the fixture child's steps spell bytes.
std::string escaped(std::string_view bytes) {
    std::string text;
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        if (value >= 0x20 && value < 0x7F && byte != '\\') {
            text.push_back(byte);
        } else {
            char spelled[5];
            std::snprintf(spelled, sizeof spelled, "\\x%02x", value);
            text += spelled;
        }
    }
    return text;
}

// An object with one member, `length` bytes long in all.
std::string objectOfLength(std::size_t length) {
    const std::string frame = R"({"pad":""})";
    return R"({"pad":")" + std::string(length - frame.size(), 'p') + R"("})";
}

Reply paddedReply(std::size_t length) {
    return *parseJsonObject(objectOfLength(length));
}

class SetupIPCReplies : public SetupIPCTest {
  protected:
    // A first-run process that answers one request with these bytes and every later one, which
    // shows that it is the same process and still understood, with {"next": true}.
    void answerOnceWith(std::string_view bytes) const {
        firstRun("answer " + escaped(bytes) + "\nanswer-all {\"next\":true}\\n\n");
    }

    Reply replyTo(std::string_view bytes) {
        answerOnceWith(bytes);
        const Reply reply = ask("enrollment.poll");
        const pid_t pid = report().pid;
        EXPECT_EQ(ask("enrollment.poll"), (Reply{{"next", Json(true)}})) << escaped(bytes);
        EXPECT_EQ(report().pid, pid);
        closeAndWait();
        return reply;
    }

    Reply replyToLine(std::string_view line) { return replyTo(std::string(line) + "\n"); }
};

TEST_F(SetupIPCReplies, ArePassedOnWholeAndUnchanged) {
    EXPECT_EQ(
        replyToLine(R"({"ok":"yes","code":17,"nested":{"a":[1,null,false,"\u0041"]}})"),
        (Reply{{"ok", Json("yes")},
               {"code", Json(17.0)},
               {"nested", Json(Json::Object{{"a", Json(Json::Array{Json(1.0), Json(), Json(false),
                                                                   Json("A")})}})}}));
}

TEST_F(SetupIPCReplies, MayBeTheEmptyObject) {
    EXPECT_EQ(replyToLine("{}"), Reply());
    EXPECT_EQ(replyToLine(" { } "), Reply());
}

TEST_F(SetupIPCReplies, AreFailuresWhenTheTopLevelIsNoObject) {
    for (const char* line : {"[]", R"([{"code":"enrollment_paired"}])", R"("enrollment_paired")",
                             "17", "true", "null"}) {
        EXPECT_EQ(replyToLine(line), setupFailureReply()) << line;
    }
}

TEST_F(SetupIPCReplies, AreFailuresWhenTheyAreNoJson) {
    for (const char* line :
         {"", " ", "x", "{", R"({"code":"a"}})", R"({"code":"a"} {})", R"({"code":"a",})",
          "{'code':'a'}", R"({"code":"a)", "{\"a\":\"\t\"}"}) {
        EXPECT_EQ(replyToLine(line), setupFailureReply()) << line;
    }
}

TEST_F(SetupIPCReplies, MayEndInACarriageReturn) {
    EXPECT_EQ(replyToLine("{\"code\":\"a\"}\r"), (Reply{{"code", Json("a")}}));
    EXPECT_EQ(replyToLine("{\"code\":\"a\r\"}"), setupFailureReply());
}

TEST_F(SetupIPCReplies, MayStartWithAByteOrderMark) {
    EXPECT_EQ(replyToLine("\xEF\xBB\xBF{\"code\":\"a\"}"), (Reply{{"code", Json("a")}}));
    EXPECT_EQ(replyToLine("{\"code\":\"a\"}\xEF\xBB\xBF"), setupFailureReply());
    EXPECT_EQ(replyToLine("\xEF\xBB\xBF"), setupFailureReply());
}

TEST_F(SetupIPCReplies, HoldNoNulByte) {
    using namespace std::string_view_literals;
    for (const std::string_view line : {"{\"code\":\"a\"}\0"sv, "{\"code\":\"a\"}\0{}"sv,
                                        "\0{\"code\":\"a\"}"sv, "{\"code\":\"a\0\"}"sv, "\0"sv}) {
        EXPECT_EQ(replyToLine(line), setupFailureReply()) << escaped(line);
    }
    EXPECT_EQ(replyToLine(R"({"code":"a\u0000b"})"), (Reply{{"code", Json("a\0b"sv)}}));
}

TEST_F(SetupIPCReplies, AreFailuresWhenTheyAreNotUtf8) {
    for (const char* line :
         {"{\"code\":\"\xFF\"}", "{\"code\":\"\xC3\"}", "{\"code\":\"\xC0\x80\"}",
          "{\"code\":\"\xED\xA0\x80\"}", "{\"\x80\":\"a\"}", "\xFE\xFF"}) {
        EXPECT_EQ(replyToLine(line), setupFailureReply()) << escaped(line);
    }
}

TEST_F(SetupIPCReplies, MayComeByteByByte) {
    firstRun("answer\ntrickle " + escaped("{\"name\":\"\u00E9\u20AC\U0001F39E\"}\n") +
             "\nanswer-all {\"next\":true}\\n\n");
    EXPECT_EQ(ask("enrollment.poll"), (Reply{{"name", Json("\u00E9\u20AC\U0001F39E")}}));
    EXPECT_EQ(ask("enrollment.poll"), (Reply{{"next", Json(true)}}));
}

TEST_F(SetupIPCReplies, MayBe8192BytesLongBeforeTheLineFeed) {
    EXPECT_EQ(replyToLine(objectOfLength(8191)), paddedReply(8191));
    EXPECT_EQ(replyToLine(objectOfLength(8192)), paddedReply(8192));
    EXPECT_EQ(replyToLine(objectOfLength(8191) + "\r"), paddedReply(8191));
}

TEST_F(SetupIPCReplies, Of8193BytesAreRefusedThoughTheyAreGoodJson) {
    answerOnceWith(objectOfLength(8193) + "\n");
    EXPECT_EQ(ask("enrollment.poll"), setupFailureReply());
    // All that was left of it is its line feed, which makes an empty line.
    EXPECT_EQ(ask("enrollment.poll"), setupFailureReply());
    EXPECT_EQ(ask("enrollment.poll"), (Reply{{"next", Json(true)}}));
}

TEST_F(SetupIPCReplies, BeginWithTheRestOfAnOverlongLine) {
    answerOnceWith(std::string(8193, ' ') + "{\"rest\":true}\n");
    EXPECT_EQ(ask("enrollment.poll"), setupFailureReply());
    const pid_t pid = report().pid;
    EXPECT_EQ(ask("enrollment.poll"), (Reply{{"rest", Json(true)}}));
    // From here on each request gets the answer to the one before it.
    EXPECT_EQ(ask("enrollment.poll"), (Reply{{"next", Json(true)}}));
    EXPECT_EQ(report().pid, pid);
}

TEST_F(SetupIPCReplies, AreCutFromALongerLineOnceForEachRequest) {
    answerOnceWith(std::string(3 * 8193, 'x') + "\n{\"after\":true}\n");
    for (int request = 0; request < 3; ++request) {
        EXPECT_EQ(ask("enrollment.poll"), setupFailureReply());
    }
    EXPECT_EQ(ask("enrollment.poll"), setupFailureReply()) << "the empty line at its end";
    EXPECT_EQ(ask("enrollment.poll"), (Reply{{"after", Json(true)}}));
}

TEST_F(SetupIPCReplies, OfTwoLinesAnswerTwoRequests) {
    answerOnceWith("{\"line\":1}\n{\"line\":2}\n");
    EXPECT_EQ(ask("enrollment.poll"), (Reply{{"line", Json(1.0)}}));
    EXPECT_EQ(ask("enrollment.poll"), (Reply{{"line", Json(2.0)}}));
}

TEST_F(SetupIPCReplies, MayBePrintedBeforeAnyRequest) {
    firstRun("print {\"early\":true}\\n\nanswer-all {\"next\":true}\\n\n");
    EXPECT_EQ(ask("enrollment.poll"), (Reply{{"early", Json(true)}}));
    EXPECT_EQ(ask("enrollment.poll"), (Reply{{"next", Json(true)}}));
}

TEST_F(SetupIPCReplies, NeedNoLineFeedAtTheEndOfOutput) {
    firstRun("answer {\"code\":\"a\"}\n");
    EXPECT_EQ(ask("enrollment.poll"), (Reply{{"code", Json("a")}}));
    firstRun("answer " + objectOfLength(8192) + "\n");
    ASSERT_TRUE(awaitExit(report().pid));
    EXPECT_EQ(ask("enrollment.poll"), paddedReply(8192));
    firstRun("answer " + objectOfLength(8193) + "\n");
    ASSERT_TRUE(awaitExit(report().pid));
    EXPECT_EQ(ask("enrollment.poll"), setupFailureReply());
}

TEST_F(SetupIPCReplies, AreFailuresWhenTheOutputEndsTooEarly) {
    for (const char* text : {"", "{", R"({"code":"a")", "[]", "\\n"}) {
        firstRun("answer " + std::string(text) + "\n");
        EXPECT_EQ(ask("enrollment.poll"), setupFailureReply()) << text;
        ASSERT_TRUE(awaitExit(report().pid));
    }
}

TEST_F(SetupIPCReplies, AreFailuresAtOnceWhenTheOutputIsClosedByAProcessThatGoesOn) {
    firstRun("answer {\"half\":\nclose-output\necho-all\n");
    EXPECT_EQ(ask("enrollment.poll"), setupFailureReply());
    const pid_t pid = report().pid;
    EXPECT_EQ(ask("enrollment.renew"), setupFailureReply());
    EXPECT_EQ(report().pid, pid) << "it still runs, so it is still used";
    ASSERT_TRUE(awaitReceived(2));
}

TEST_F(SetupIPCReplies, OfACrashAreFailures) {
    firstRun("answer {\"code\":\ndie\n");
    EXPECT_EQ(ask("enrollment.poll"), setupFailureReply());
}

TEST_F(SetupIPCReplies, CountWhateverTheExitStatus) {
    firstRun("answer {\"code\":\"a\"}\\n\nexit 3\n");
    EXPECT_EQ(ask("enrollment.poll"), (Reply{{"code", Json("a")}}));
}

}  // namespace
}  // namespace veltrix::test
