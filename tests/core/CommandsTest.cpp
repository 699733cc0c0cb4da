#include "operator/Commands.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace veltrix {

// So that a failure names the row instead of its bytes.
void PrintTo(const CommandRule& rule, std::ostream* out) {
    *out << '"' << rule.word << '"';
}

namespace {

constexpr auto kSaved = Precondition::savedSettings;
constexpr auto kBundle = Precondition::completeBundle;

struct ExpectedRule {
    std::string_view word;
    Precondition precondition;
    std::optional<Question> question;
    Effect effect;
    std::string_view scriptWord;
};

const std::vector<ExpectedRule> kRules{
    {"start", kSaved, Question::start, Effect::runService, ""},
    {"stop", kSaved, Question::stop, Effect::runService, ""},
    {"status", kSaved, std::nullopt, Effect::runService, ""},
    {"check", kSaved, std::nullopt, Effect::runController, ""},
    {"overview", kSaved, std::nullopt, Effect::runController, ""},
    {"recordings", kSaved, std::nullopt, Effect::runController, ""},
    {"shares", kSaved, std::nullopt, Effect::runController, ""},
    {"configuration", kSaved, std::nullopt, Effect::runController, "inspect"},
    {"install", kSaved, Question::install, Effect::runInstall, ""},
    {"upgrade", kBundle, Question::update, Effect::runUpdate, ""},
    {"repair", kBundle, Question::repair, Effect::runUpdate, ""},
    {"setup", kSaved, std::nullopt, Effect::openSetup, ""},
    {"save", kSaved, std::nullopt, Effect::confirmSaved, ""},
};

void expectRule(const CommandRule& rule, const ExpectedRule& expected) {
    SCOPED_TRACE(std::string(expected.word));
    EXPECT_EQ(rule.word, expected.word);
    EXPECT_EQ(rule.precondition, expected.precondition);
    EXPECT_EQ(rule.question, expected.question);
    EXPECT_EQ(rule.effect, expected.effect);
    EXPECT_EQ(rule.scriptWord, expected.scriptWord);
}

TEST(Commands, AreTheseThirteen) {
    ASSERT_EQ(commandRules().size(), kRules.size());
    for (const ExpectedRule& expected : kRules) {
        expectRule(commandRule(expected.word), expected);
    }
}

TEST(Commands, StandInTheTableOnceEach) {
    for (const CommandRule& rule : commandRules()) {
        EXPECT_EQ(&commandRule(rule.word), &rule) << rule.word;
    }
}

TEST(Commands, SendEveryOtherWordToTheControllerAsItIs) {
    using namespace std::string_view_literals;
    for (const std::string_view word :
         {""sv, "Start"sv, "START"sv, "start "sv, " start"sv, "star"sv, "starts"sv, "start\0"sv,
          "Configuration"sv, "inspect"sv, "Setup"sv, "SAVE"sv, "Upgrade"sv, "--home"sv, "ſave"sv}) {
        expectRule(commandRule(word), {"", kSaved, std::nullopt, Effect::runController, ""});
    }
}

TEST(Commands, KnowTheirScripts) {
    EXPECT_STREQ(kServiceScript, "desktop/service.mjs");
    EXPECT_STREQ(kControllerScript, "desktop/controller.mjs");
    EXPECT_STREQ(kInstallScript, "desktop/install.mjs");
    EXPECT_STREQ(kUpdateScript, "desktop/update.mjs");
}

}  // namespace
}  // namespace veltrix
