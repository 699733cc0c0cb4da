// What each command word asks, tells the shell and runs, step by step.
#include "core/OperatorFixture.h"

#include "common/Environment.h"

#include <sys/stat.h>

#include <filesystem>
#include <functional>
#include <utility>

namespace veltrix::test {
namespace {

constexpr std::string_view kWords[] = {"start",         "stop",   "status",  "check",  "overview",
                                       "recordings",    "shares", "upgrade", "repair", "install",
                                       "configuration", "setup",  "save",    ""};

class OperatorCommand : public OperatorTest {
  protected:
    [[nodiscard]] std::string resource(std::string_view relative) const {
        return resources.folder() + "/" + std::string(relative);
    }

    // The word is carried out after these calls and comes to this job.
    void expectRun(std::string_view word, const Calls& before, const std::string& executable,
                   const std::vector<std::string>& arguments) {
        SCOPED_TRACE(std::string(word));
        EXPECT_EQ(perform(word), before + kStarted);
        EXPECT_TRUE(subject->busy());
        EXPECT_TRUE(jobs.empty()) << "nothing runs on the main thread";
        EXPECT_EQ(answer(R"({"ok":true,"code":"ready"})"), kEnded + said("Ready."));
        ASSERT_EQ(jobs.size(), 1u);
        EXPECT_EQ(jobs[0].executable, executable);
        EXPECT_EQ(jobs[0].arguments, arguments);
        EXPECT_EQ(jobs[0].input.has_value(), word == "install");
        expectIdle();
        jobs.clear();
    }

    void expectBundleRefusal() {
        for (const std::string_view word : {"upgrade", "repair"}) {
            SCOPED_TRACE(std::string(word));
            EXPECT_EQ(perform(word),
                      (Calls{"status: Open the complete bundle to update or repair this "
                             "installation.",
                             "bring forward"}));
            expectIdle();
        }
    }
};

TEST_F(OperatorCommand, RunsTheServiceScriptForTheServiceWords) {
    const std::string script = resource("desktop/service.mjs");
    expectRun("start", {"save", "confirm: Start DVR?"}, "/usr/bin/node",
              {script, "start", "--home", "/Users/sam/DVR"});
    expectRun("stop", {"save", "confirm: Stop DVR?"}, "/usr/bin/node",
              {script, "stop", "--home", "/Users/sam/DVR"});
    expectRun("status", {"save"}, "/usr/bin/node", {script, "status", "--home", "/Users/sam/DVR"});
}

TEST_F(OperatorCommand, RunsTheControllerScriptForTheOthers) {
    for (const std::string word : {"check", "overview", "recordings", "shares"}) {
        expectRun(word, {"save"}, "/usr/bin/node",
                  {resource("desktop/controller.mjs"), word, "--home", "/Users/sam/DVR"});
    }
}

TEST_F(OperatorCommand, TellsTheControllerToInspectForTheConfiguration) {
    expectRun("configuration", {"save"}, "/usr/bin/node",
              {resource("desktop/controller.mjs"), "inspect", "--home", "/Users/sam/DVR"});
}

TEST_F(OperatorCommand, PassesEveryOtherWordToTheControllerAsItIs) {
    for (const std::string word : {"", "Configuration", "START", "inspect", "Setup", "start ",
                                   "SAVE", "Upgrade", "--help", "two words", "\u00e9", "\"'$%\\"}) {
        expectRun(word, {"save"}, "/usr/bin/node",
                  {resource("desktop/controller.mjs"), word, "--home", "/Users/sam/DVR"});
    }
}

TEST_F(OperatorCommand, RunsTheInstallScriptWithoutWordAndHome) {
    expectRun("install", {"save", "confirm: Install DVR for this account?"}, "/usr/bin/node",
              {resource("desktop/install.mjs")});
}

TEST_F(OperatorCommand, RunsTheUpdateScriptUnderTheBundlesOwnRuntime) {
    const std::string script = resource("desktop/update.mjs");
    expectRun("upgrade", {"confirm: Update DVR?"}, resources.node(),
              {script, "upgrade", "--home", "/Users/sam/DVR"});
    expectRun("repair", {"confirm: Repair Interrupted Update?"}, resources.node(),
              {script, "repair", "--home", "/Users/sam/DVR"});
}

TEST_F(OperatorCommand, AsksTheQuestionInItsOwnWords) {
    const std::pair<std::string_view, Question> kQuestions[] = {{"install", Question::install},
                                                                {"start", Question::start},
                                                                {"stop", Question::stop},
                                                                {"upgrade", Question::update},
                                                                {"repair", Question::repair}};
    for (const auto& [word, question] : kQuestions) {
        const Confirmation* asked = nullptr;
        shell.onConfirm = [&asked](const Confirmation& given) {
            asked = &given;
            return false;
        };
        static_cast<void>(perform(word));
        EXPECT_EQ(asked, &confirmation(question)) << word;
    }
}

TEST_F(OperatorCommand, DoesNothingFurtherWhenTheQuestionIsDeclined) {
    shell.onConfirm = [this](const Confirmation&) {
        EXPECT_FALSE(subject->busy()) << "nothing is busy while the question is up";
        return false;
    };
    EXPECT_EQ(perform("start"), (Calls{"save", "confirm: Start DVR?"}));
    EXPECT_EQ(perform("stop"), (Calls{"save", "confirm: Stop DVR?"}));
    EXPECT_EQ(perform("install"), (Calls{"save", "confirm: Install DVR for this account?"}));
    EXPECT_EQ(perform("upgrade"), Calls{"confirm: Update DVR?"});
    EXPECT_EQ(perform("repair"), Calls{"confirm: Repair Interrupted Update?"});
    expectIdle();
}

TEST_F(OperatorCommand, DoesNothingFurtherWhenTheSettingsAreRefused) {
    shell.onSave = [] { return false; };
    for (const std::string_view word : kWords) {
        if (word != "upgrade" && word != "repair") {
            EXPECT_EQ(perform(word), Calls{"save"}) << word;
            expectIdle();
        }
    }
    EXPECT_EQ(perform("no such word"), Calls{"save"});
}

TEST_F(OperatorCommand, OnlySaysSoWhenTheSettingsAreSaved) {
    EXPECT_EQ(perform("save"),
              (Calls{"save", "status: Desktop settings saved. Service unchanged."}));
    expectIdle();
}

TEST_F(OperatorCommand, SubmitsItsJobForAPersonWhoWaits) {
    static_cast<void>(perform("status"));
    EXPECT_EQ(dispatcher.qualities(),
              std::vector<QualityOfService>{QualityOfService::userInitiated});
}

TEST_F(OperatorCommand, HandsTheEnvironmentOfTheMomentToTheJob) {
    static_cast<void>(perform("status"));
    environment = {"PATH=/changed", "X=y"};
    static_cast<void>(answer("{}"));
    EXPECT_EQ(environments, std::vector<std::vector<std::string>>{environment});
}

TEST_F(OperatorCommand, SendsTheFormToTheInstallScriptExactlyAsTyped) {
    shell.texts = {"/home \u00e9/\\", "/n", " two\nlines\t", "not a \"URL\"", "  030x "};
    static_cast<void>(perform("install"));
    static_cast<void>(answer("{}"));
    ASSERT_TRUE(jobs.at(0).input);
    EXPECT_EQ(parseJsonObject(*jobs[0].input), (Json::Object{{"home", Json("/home \u00e9/\\")},
                                                             {"storage", Json(" two\nlines\t")},
                                                             {"origin", Json("not a \"URL\"")},
                                                             {"retentionDays", Json("  030x ")}}));
}

TEST_F(OperatorCommand, SendsEmptyAndHugeFieldsToo) {
    shell.texts = {"/h", "/n", "", "", std::string(100'000, '9')};
    static_cast<void>(perform("install"));
    static_cast<void>(answer("{}"));
    EXPECT_EQ(parseJsonObject(jobs.at(0).input.value_or("")),
              (Json::Object{{"home", Json("/h")},
                            {"storage", Json("")},
                            {"origin", Json("")},
                            {"retentionDays", Json(std::string(100'000, '9'))}}));
}

TEST_F(OperatorCommand, InstallsWithEmptyInputWhenTheFormHasNoJsonForm) {
    shell.texts.storage = "\xff";
    EXPECT_EQ(perform("install"),
              (Calls{"save", "confirm: Install DVR for this account?"} + kStarted));
    static_cast<void>(answer("{}"));
    EXPECT_EQ(jobs.at(0).input, std::nullopt);
}

TEST_F(OperatorCommand, CopiesTheFieldsSoThatLaterEditsDoNotReachTheJob) {
    static_cast<void>(perform("install"));
    const FieldTexts before = shell.texts;
    shell.texts = {"/x", "/x", "/x", "x", "x"};
    static_cast<void>(answer("{}"));
    EXPECT_EQ(jobs.at(0).executable, before.node);
    EXPECT_EQ(*stringMember(*parseJsonObject(*jobs[0].input), "home"), before.home);
}

TEST_F(OperatorCommand, ReadsTheFieldsAfterTheQuestion) {
    shell.onConfirm = [this](const Confirmation&) {
        shell.texts.home = "/edited";
        return true;
    };
    static_cast<void>(perform("start"));
    static_cast<void>(answer("{}"));
    EXPECT_EQ(jobs.at(0).arguments.back(), "/edited");
}

TEST_F(OperatorCommand, AsksForTheResourceFolderAnewEveryTime) {
    int asked = 0;
    subject = Operator::make(shell, {dispatcher,
                                     [&] {
                                         ++asked;
                                         return resources.folder();
                                     },
                                     [] { return std::vector<std::string>(); }});
    static_cast<void>(perform("save"));
    static_cast<void>(perform("save"));
    EXPECT_EQ(asked, 2);
}

TEST_F(OperatorCommand, UpdatesWithoutLookingAtAnythingButTheInstallationFolder) {
    shell.onSave = [] { return false; };
    shell.texts = {"/Users/sam/DVR", "relative \"node\"", "", "", ""};
    expectRun("upgrade", {"confirm: Update DVR?"}, resources.node(),
              {resource("desktop/update.mjs"), "upgrade", "--home", "/Users/sam/DVR"});
}

TEST_F(OperatorCommand, UpdatesOnlyAnInstallationWithAValidPath) {
    for (const std::string& home :
         {std::string(), std::string("DVR"), std::string("./DVR"), std::string("/a\"b"),
          std::string("/a\tb"), std::string("/a\nb"), std::string("/a\x7f"),
          std::string("/a\0b", 4), std::string(" /a")}) {
        SCOPED_TRACE(home);
        shell.texts.home = home;
        expectBundleRefusal();
    }
    shell.texts.home = "/no/such/folder\u0085";
    EXPECT_EQ(perform("upgrade"), (Calls{"confirm: Update DVR?"} + kStarted));
}

TEST_F(OperatorCommand, UpdatesOnlyFromABundleWithARuntime) {
    std::filesystem::remove(resources.node());
    expectBundleRefusal();
    resources.script("bundle/runtime/bin/node", "not executable");
    expectBundleRefusal();
    ASSERT_EQ(::chmod(resources.node().c_str(), 0700), 0);
    EXPECT_EQ(perform("repair"), (Calls{"confirm: Repair Interrupted Update?"} + kStarted));
}

TEST_F(OperatorCommand, RunsTheSetupSessionBetweenDisablingAndEnablingTheMenu) {
    shell.onSetupSession = [this] { EXPECT_TRUE(subject->busy()); };
    EXPECT_EQ(perform("setup"),
              (Calls{"save", "menu actions off", "setup session: /usr/bin/node, /Users/sam/DVR",
                     "menu actions on"}));
    expectIdle();
    EXPECT_TRUE(dispatcher.qualities().empty()) << "no job";
}

TEST_F(OperatorCommand, IsReadyForTheNextCommandAfterTheSetupSession) {
    static_cast<void>(perform("setup"));
    EXPECT_EQ(perform("setup").size(), 4u);
    EXPECT_EQ(perform("status"), Calls{"save"} + kStarted);
}

TEST_F(OperatorCommand, IsDroppedWithoutATraceWhileAnActionRuns) {
    static_cast<void>(perform("status"));
    for (const std::string_view word : kWords) {
        EXPECT_EQ(perform(word), Calls()) << word;
    }
    dispatcher.runWorkers();
    for (const std::string_view word : kWords) {
        EXPECT_EQ(perform(word), Calls()) << word;
    }
    dispatcher.runMain();
    EXPECT_EQ(jobs.size(), 1u);
    shell.calls.clear();
    EXPECT_EQ(perform("status"), Calls{"save"} + kStarted);
}

TEST_F(OperatorCommand, IsDroppedWithoutATraceDuringTheSetupSession) {
    shell.onSetupSession = [this] {
        shell.calls.clear();
        for (const std::string_view word : kWords) {
            subject->perform(word);
        }
        EXPECT_EQ(shell.calls, Calls());
    };
    EXPECT_EQ(perform("setup"), Calls{"menu actions on"});
    expectIdle();
}

TEST_F(OperatorCommand, IsDroppedWhenAnotherGotUnderWayWhileItsQuestionWasUp) {
    for (const std::string_view word : {"start", "stop", "install", "upgrade", "repair"}) {
        SCOPED_TRACE(std::string(word));
        shell.onConfirm = [this](const Confirmation&) {
            shell.calls.clear();
            subject->perform("status");
            return true;
        };
        EXPECT_EQ(perform(word), Calls{"save"} + kStarted) << "the other's calls and no more";
        static_cast<void>(answer("{}"));
        ASSERT_EQ(jobs.size(), 1u);
        EXPECT_EQ(jobs[0].arguments.at(1), "status");
        jobs.clear();
    }
}

TEST_F(OperatorCommand, RunsOnlyOneOfTwoQuestionsThatAreBothAccepted) {
    bool nested = false;
    shell.onConfirm = [&](const Confirmation&) {
        if (!std::exchange(nested, true)) {
            subject->perform("stop");
        }
        return true;
    };
    EXPECT_EQ(perform("start"),
              (Calls{"save", "confirm: Start DVR?", "save", "confirm: Stop DVR?"} + kStarted));
    static_cast<void>(answer("{}"));
    ASSERT_EQ(jobs.size(), 1u);
    EXPECT_EQ(jobs[0].arguments.at(1), "stop");
}

TEST_F(OperatorCommand, GoesOnWhenWhatWasUnderWayMeanwhileIsOverAgain) {
    shell.onConfirm = [this](const Confirmation&) {
        subject->perform("setup");
        shell.calls.clear();
        return true;
    };
    EXPECT_EQ(perform("start"), kStarted);
}

TEST_F(OperatorCommand, KeepsTheOperatorAliveUntilTheReplyIsHandledOnTheMainThread) {
    static_cast<void>(perform("status"));
    const std::weak_ptr<Operator> witness = subject;
    subject.reset();
    EXPECT_FALSE(witness.expired());
    dispatcher.runWorkers();
    EXPECT_FALSE(witness.expired()) << "the worker is not the one to let it go";
    dispatcher.runMain();
    EXPECT_TRUE(witness.expired());
    EXPECT_EQ(shell.calls.back(), "bring forward") << "and its reply was handled";
}

// A main thread that is quicker than the worker: it has dealt with the reply before the worker is
// done with handing it over.
class QuickMainThread final : public VirtualDispatcher {
  public:
    void asyncOnMain(Work work) override {
        std::exchange(work, nullptr)();
        afterwards();
    }
    std::function<void()> afterwards = [] {};
};

TEST_F(OperatorCommand, IsLetGoOnTheMainThreadAlsoWhenThatIsQuickerThanTheWorker) {
    QuickMainThread quick;
    const auto run = [](const ActionJob&, const std::vector<std::string>&, Dispatcher&) {
        return incompleteReply();
    };
    subject = Operator::make(shell, {quick, resources.asFunction(), processEnvironment, run});
    static_cast<void>(perform("status"));
    const std::weak_ptr<Operator> witness = subject;
    subject.reset();
    bool letGo = false;
    quick.afterwards = [&] { letGo = witness.expired(); };
    quick.runWorkers();
    EXPECT_TRUE(letGo);
}

}  // namespace
}  // namespace veltrix::test
