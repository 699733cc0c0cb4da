// What a script is given and what counts as its reply.
#include "core/ActionJobFixture.h"

#include "support/ChildReport.h"
#include "support/DescriptorLimit.h"
#include "support/Processes.h"
#include "support/SignalStorm.h"

#include <sys/resource.h>

namespace veltrix::test {
namespace {

// The biggest that this process has ever been, in bytes.
std::size_t peakMemory() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
#if defined(__APPLE__)
    return static_cast<std::size_t>(usage.ru_maxrss);
#else
    return static_cast<std::size_t>(usage.ru_maxrss) * 1024;
#endif
}

// An object of exactly that many bytes.
std::string objectOfSize(std::size_t size) {
    const std::string frame = R"({"code":""})";
    return R"({"code":")" + std::string(size - frame.size(), 'x') + R"("})";
}

TEST_F(ActionJobTest, HasTheseLimits) {
    EXPECT_EQ(kActionLimit, std::chrono::milliseconds(200'000));
    EXPECT_EQ(kReplyLimit, 8192u);
}

TEST_F(ActionJobTest, HasThisReplyForWhateverWentWrong) {
    EXPECT_EQ(incompleteReply(), (Reply{{"ok", Json(false)}, {"code", Json("action_incomplete")}}));
}

TEST_F(ActionJobTest, ReturnsTheWholeObjectThatTheScriptPrints) {
    EXPECT_EQ(run(R"(print  {"ok":true,"n":[1,null],"o":{"a":"\\u00e9"}}\n)"),
              (Reply{{"ok", Json(true)},
                     {"n", Json(Json::Array{Json(1.0), Json()})},
                     {"o", Json(Json::Object{{"a", Json("\u00e9")}})}}));
    EXPECT_EQ(run("print {}"), Reply());
}

TEST_F(ActionJobTest, GivesTheScriptItsArgumentsAndTheListedEnvironmentAlone) {
    const std::string script =
        resources.script("desktop/service.mjs", "report " + path("report") + "\nprint {}");
    const ActionJob job{resources.node(), {script, "start", "--home", "/a b/\"c\""}, std::nullopt};
    EXPECT_EQ(
        runActionJob(job,
                     {"PATH=/usr/bin:/bin", "NODE_OPTIONS=-r /x", "lang=de", "DOCKER_HOST=tcp://d",
                      "SECRET=x", "DYLD_INSERT_LIBRARIES=/x", "Path=/p", "HOME=\xff\n"},
                     clock),
        Reply());
    const ChildReport seen = awaitReport(path("report"));
    EXPECT_EQ(seen.arguments, (std::vector<std::string>{resources.node(), script, "start", "--home",
                                                        "/a b/\"c\""}));
    EXPECT_EQ(seen.environment,
              (std::vector<std::string>{"PATH=/usr/bin:/bin", "lang=de", "DOCKER_HOST=tcp://d",
                                        "Path=/p", "HOME=\xff\n"}));
    EXPECT_EQ(seen.descriptors, (std::vector<int>{0, 1, 2}));
}

TEST_F(ActionJobTest, UsesUpTo8192BytesAndNotOneMore) {
    for (const std::size_t size : {8191, 8192}) {
        const Reply reply = run("print " + objectOfSize(size));
        ASSERT_NE(stringMember(reply, "code"), nullptr) << size;
        EXPECT_EQ(stringMember(reply, "code")->size(), size - 11) << size;
    }
    EXPECT_EQ(run("print " + objectOfSize(8193)), incompleteReply());
}

TEST_F(ActionJobTest, CountsWhiteSpaceIntoTheLimit) {
    EXPECT_EQ(stringMember(run("print " + objectOfSize(8191) + "\\n"), "code")->size(), 8180u);
    EXPECT_EQ(run("print " + objectOfSize(8192) + "\\n"), incompleteReply());
    EXPECT_EQ(run("print {}" + std::string(8190, ' ')), Reply());
    EXPECT_EQ(run("print {}" + std::string(8191, ' ')), incompleteReply());
    EXPECT_EQ(run("print " + std::string(8192, ' ') + "{}"), incompleteReply());
}

TEST_F(ActionJobTest, HasNoReplyWithoutOneObject) {
    for (const char* printed : {"",
                                " ",
                                "\\n",
                                "x",
                                "{",
                                "}",
                                "{}{}",
                                "{}\\n{}\\n",
                                "{} x",
                                "[]",
                                "[{}]",
                                "\"{}\"",
                                "null",
                                "true",
                                "1",
                                "{\"ok\":true",
                                "{\"ok\":True}",
                                "{'ok':true}",
                                "{\"code\":\"\\xff\"}",
                                "{\"code\":\"\\xc3\"}",
                                "{}\\x00",
                                "\\x00",
                                "{\"a\":1,}",
                                "Error: {}"}) {
        EXPECT_EQ(run(std::string("print ") + printed), incompleteReply()) << printed;
    }
    EXPECT_EQ(run(""), incompleteReply());
    EXPECT_EQ(run("close-output"), incompleteReply());
}

TEST_F(ActionJobTest, TakesAByteOrderMarkAndWhiteSpaceAroundTheObject) {
    EXPECT_EQ(run("print \\xef\\xbb\\xbf{}"), Reply());
    EXPECT_EQ(run("print \\r\\n \\t{} \\r\\n"), Reply());
}

TEST_F(ActionJobTest, PutsTogetherWhatArrivesInPieces) {
    const Reply expected{{"ok", Json(true)}, {"code", Json("\u00e9\u20ac\U0001F4FA")}};
    EXPECT_EQ(run("trickle {\"ok\":true,\"code\":\"\u00e9\u20ac\U0001F4FA\"}\\n"), expected);
    EXPECT_EQ(run("print {\"ok\":true,\"code\":\"\u00e9\\xe2\n"
                  "print \\x82\\xac\\xf0\\x9f\n"
                  "print \\x93\\xba\"}"),
              expected);
}

TEST_F(ActionJobTest, NeverLooksAtTheExitStatus) {
    for (const char* end : {"exit 0", "exit 1", "exit 255", "die"}) {
        EXPECT_EQ(run(std::string(kPrintStarted) + end), startedReply()) << end;
        EXPECT_EQ(run(std::string("print {\"ok\"\n") + end), incompleteReply()) << end;
    }
}

TEST_F(ActionJobTest, DiscardsStandardErrorHoweverMuchItIs) {
    EXPECT_EQ(run("fill-errors 10000000\n" + std::string(kPrintStarted) + "fill-errors 10000000\n"),
              startedReply());
}

TEST_F(ActionJobTest, DrainsAnOutputWithoutEndInLittleMemory) {
    EXPECT_EQ(run("fill 1000000"), incompleteReply());
    const std::size_t before = peakMemory();
    EXPECT_EQ(run("fill 67108864"), incompleteReply());
    EXPECT_EQ(run(std::string(kPrintStarted) + "fill 1073741824"), incompleteReply());
    EXPECT_LT(peakMemory() - before, 8u << 20);
}

TEST_F(ActionJobTest, EndsTheInputAtOnceWhenThereIsNone) {
    EXPECT_EQ(run("read-input " + path("input") + "\n" + std::string(kPrintStarted)),
              startedReply());
    EXPECT_EQ(contentsOf(path("input")), "");
    EXPECT_EQ(run("read-input " + path("input") + "\n" + std::string(kPrintStarted), ""),
              startedReply());
}

TEST_F(ActionJobTest, WritesItsInputWholeAndThenEndsIt) {
    const std::string payload("{\"home\":\"/a\"}\0\xff\n", 16);
    EXPECT_EQ(run("read-input " + path("input") + "\n" + std::string(kPrintStarted), payload),
              startedReply());
    EXPECT_EQ(contentsOf(path("input")), payload);
}

TEST_F(ActionJobTest, WritesAnInputLargerThanAPipeToASlowReader) {
    const std::string payload(200'000, 'p');
    EXPECT_EQ(run("read-slowly " + path("input") + "\n" + std::string(kPrintStarted), payload),
              startedReply());
    EXPECT_EQ(contentsOf(path("input")), payload);
}

TEST_F(ActionJobTest, UsesTheReplyOfAScriptThatDoesNotReadItsInput) {
    const std::string payload(1'000'000, 'p');
    EXPECT_EQ(run(kPrintStarted, payload), startedReply());
    EXPECT_EQ(run("close-input\n" + std::string(kPrintStarted), payload), startedReply());
    EXPECT_EQ(run("exit 1", payload), incompleteReply());
    EXPECT_EQ(run(kPrintStarted, "small"), startedReply());
}

TEST_F(ActionJobTest, HasNoReplyWhenTheScriptIsMissing) {
    EXPECT_EQ(
        runActionJob({resources.node(), {resources.folder() + "/desktop/no.mjs"}, {}}, {}, clock),
        incompleteReply());
    EXPECT_TRUE(clock.pending().empty());
}

TEST_F(ActionJobTest, HasNoReplyAndNoTraceWhenNodeCannotBeStarted) {
    const std::vector<int> before = openDescriptors();
    for (const std::string& node :
         {std::string(), std::string("node"), std::string("/no/such/node"), resources.folder(),
          resources.script("no-program", "#!/no/such/interpreter\n")}) {
        EXPECT_EQ(runActionJob({node, {"script"}, "payload"}, {"PATH=/bin"}, clock),
                  incompleteReply())
            << node;
        EXPECT_TRUE(clock.pending().empty());
    }
    EXPECT_EQ(openDescriptors(), before);
    EXPECT_FALSE(hasChildren());
}

TEST_F(ActionJobTest, FailsCleanlyAtEveryDescriptorLimit) {
    const ActionJob job = jobFor(kPrintStarted);
    const std::vector<int> before = openDescriptors();
    for (std::size_t spare = 0; spare < 8; ++spare) {
        Reply reply;
        {
            const DescriptorLimit limit(spare);
            reply = runActionJob(job, {}, clock);
        }
        if (spare < 4) {
            EXPECT_EQ(reply, incompleteReply()) << "two pipes need four: " << spare;
        } else if (reply != incompleteReply()) {
            EXPECT_EQ(reply, startedReply()) << spare;
        }
        EXPECT_EQ(openDescriptors(), before) << spare;
        EXPECT_FALSE(hasChildren()) << spare;
        EXPECT_TRUE(clock.pending().empty()) << spare;
    }
    EXPECT_EQ(run(kPrintStarted), startedReply());
}

TEST_F(ActionJobTest, SurvivesBeingInterruptedAllTheTime) {
    const std::string payload(200'000, 'p');
    const std::string steps =
        "read-slowly " + path("input") + "\ntrickle {\"ok\":true,\"code\":\"started\"}\n";
    const SignalStorm storm;
    EXPECT_EQ(run(steps, payload), startedReply());
    EXPECT_EQ(contentsOf(path("input")), payload);
}

TEST_F(ActionJobTest, RunsBesideOthersWithoutHoldingTheirPipes) {
    const ActionJob slow = jobFor("await " + path("go") + "\n" + std::string(kPrintStarted));
    const ActionJob quick{
        resources.node(), {resources.script("quick", "drop-input\nprint {}")}, "x"};
    RunningJob first(slow, clock);
    RunningJob second(quick, clock);
    RunningJob third(quick, clock);
    EXPECT_EQ(second.awaitReply(), Reply());
    EXPECT_EQ(third.awaitReply(), Reply());
    EXPECT_FALSE(first.done());
    touch("go");
    EXPECT_EQ(first.awaitReply(), startedReply());
}

TEST_F(ActionJobTest, LeavesEverythingAsItWasAfterManyRuns) {
    EXPECT_EQ(run(kPrintStarted), startedReply());
    const std::vector<int> before = openDescriptors();
    const std::size_t memory = peakMemory();
    for (int i = 0; i < 150; ++i) {
        ASSERT_EQ(run(kPrintStarted, "payload"), startedReply());
        ASSERT_EQ(runActionJob({"/no/such/node", {}, {}}, {}, clock), incompleteReply());
    }
    EXPECT_EQ(openDescriptors(), before);
    EXPECT_FALSE(hasChildren());
    EXPECT_LT(peakMemory() - memory, 8u << 20);
}

}  // namespace
}  // namespace veltrix::test
