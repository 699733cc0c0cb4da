#include "model/Replies.h"

#include "operator/Outcomes.h"
#include "setup/SetupOutcomes.h"

#include <iterator>
#include <string_view>
#include <utility>

namespace veltrix::test {
namespace {

struct Ingredient {
    Json value;
    bool counts;
};

const std::vector<Ingredient> kOks{
    {Json(true), true}, {Json(false), false}, {Json(1.0), false},           {Json("true"), false},
    {Json(), false},    {Json("ok"), false},  {Json(Json::Array{}), false},
};

const std::vector<Ingredient> kPaths{
    {Json("/opt/node"), true},
    {Json("~/node"), true},
    {Json("/with space/\xC3\xA9\xC2\x85"), true},
    {Json("node"), false},
    {Json(""), false},
    {Json("/quo\"te"), false},
    {Json("/line\nfeed"), false},
    {Json("/delete\x7F"), false},
    {Json(7.0), false},
    {Json(), false},
    {Json(Json::Array{Json("/opt/node")}), false},
};

const std::vector<Ingredient> kUrls{
    {Json("https://dvr.example/"), true},
    {Json("https://dvr.example:8443/a?b#c"), true},
    {Json("http://dvr.example/"), false},
    {Json("HTTPS://dvr.example/"), false},
    {Json("https://sam@dvr.example/"), false},
    {Json("https://:word@dvr.example/"), false},
    {Json("https://@dvr.example/"), false},
    {Json("https://dvr.example\\@other.example/"), false},
    {Json("https://dvr.example/\n"), false},
    {Json("file:///etc/hosts"), false},
    {Json("javascript:alert(1)"), false},
    {Json(""), false},
    {Json(443.0), false},
    {Json(true), false},
    {Json(Json::Object{{"url", Json("https://dvr.example/")}}), false},
};

// What no sentence belongs to, or not as a string.
const std::vector<Json> kStrangeCodes{
    Json("no_such_code"),
    Json("Running"),
    Json("runnin"),
    Json(""),
    Json(1.0),
    Json(),
    Json(true),
    Json(Json::Array{Json("running")}),
};

// Absent one time in three. The value as text if it counts.
std::optional<std::string> addIngredient(Reply& reply, std::string_view name,
                                         const std::vector<Ingredient>& table, Choices& choices) {
    if (choices.below(3) == 0) {
        return std::nullopt;
    }
    const Ingredient& chosen = choices.from(table);
    reply.insert_or_assign(std::string(name), chosen.value);
    const std::string* text = chosen.value.string();
    return chosen.counts && text != nullptr ? std::optional(*text) : std::nullopt;
}

void addGarbage(Reply& reply, Choices& choices) {
    if (choices.oneIn(4)) {
        reply.emplace("OK", Json(true));
        reply.emplace("", Json(Json::Object{{"code", Json("running")}, {"ok", Json(true)}}));
    }
}

// The sentence of the code that was added, or of none.
std::string addCode(Reply& reply, std::span<const Outcome> table, std::string_view unknown,
                    std::string_view absent, Choices& choices) {
    switch (choices.below(4)) {
    case 0:
        return std::string(absent);
    case 1: {
        const Json& code = choices.from(kStrangeCodes);
        reply.emplace("code", code);
        return std::string(code.string() != nullptr ? unknown : absent);
    }
    default: {
        const Outcome& row = choices.from(table);
        reply.emplace("code", Json(row.code));
        return std::string(row.sentence);
    }
    }
}

}  // namespace

OperatorReply anyOperatorReply(Choices& choices) {
    OperatorReply made;
    made.sentence = addCode(made.reply, operatorOutcomes(), "Action failed. Check configuration.",
                            "Action outcome unknown. Refresh status before retrying.", choices);
    if (!choices.oneIn(4)) {
        // True often enough for the follow-ups to have their turn.
        const Ingredient& ok = choices.below(2) == 0 ? kOks.front() : choices.from(kOks);
        made.reply.emplace("ok", ok.value);
        made.ok = ok.counts;
    }
    made.node = addIngredient(made.reply, "node", kPaths, choices);
    made.configurationPath = addIngredient(made.reply, "configurationPath", kPaths, choices);
    made.url = addIngredient(made.reply, "url", kUrls, choices);
    addGarbage(made.reply, choices);
    return made;
}

SetupReply anySetupReply(Choices& choices) {
    constexpr std::string_view kFailed = "Setup request failed. Check certificate, consent and "
                                         "account approval; service was not started.";
    SetupReply made;
    switch (choices.below(5)) {
    case 0:
        made.pairs = true;
        made.sentence = "Saved account approval validated. You can set the DVR login.";
        made.reply.emplace("code", Json("enrollment_paired"));
        break;
    case 1:
        made.configuresLogin = true;
        made.sentence = "DVR login configured. Service stays stopped.";
        made.reply.emplace("code", Json("login_configured"));
        break;
    case 2: {
        const Json userCodes[] = {Json("ABCD-1234"), Json(""), Json(12.0), Json()};
        const Json& userCode = choices.from(userCodes);
        made.reply.emplace("code", Json("enrollment_pending"));
        made.reply.emplace("userCode", userCode);
        made.sentence = userCode.string() != nullptr
                            ? "Account approval code: " + *userCode.string()
                            : "Approval pending. Check again after the requested interval.";
        break;
    }
    default:
        made.sentence = addCode(made.reply, setupOutcomes(), kFailed, kFailed, choices);
    }
    static_cast<void>(addIngredient(made.reply, "ok", kOks, choices));
    addGarbage(made.reply, choices);
    return made;
}

}  // namespace veltrix::test
