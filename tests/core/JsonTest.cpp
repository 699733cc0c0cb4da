#include "common/Json.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace veltrix {
namespace {

using namespace std::string_view_literals;

TEST(Json, IsOneTypeAtATime) {
    EXPECT_TRUE(Json().isNull());
    const Json truth(true);
    EXPECT_EQ(*truth.boolean(), true);
    EXPECT_EQ(truth.number(), nullptr);
    EXPECT_EQ(truth.string(), nullptr);
    EXPECT_EQ(truth.array(), nullptr);
    EXPECT_EQ(truth.object(), nullptr);
    EXPECT_FALSE(truth.isNull());
    const Json text("a");
    EXPECT_EQ(*text.string(), "a");
    EXPECT_EQ(text.boolean(), nullptr) << "a text is no Boolean, whatever C++ thinks of pointers";
}

TEST(Json, TellsEqualValuesOfDifferentTypesApart) {
    EXPECT_NE(Json(1.0), Json(true));
    EXPECT_NE(Json("1"), Json(1.0));
    EXPECT_NE(Json(), Json(false));
    EXPECT_NE(Json(), Json(""));
    EXPECT_NE(Json(Json::Array()), Json(Json::Object()));
}

TEST(JsonMembers, AreStringsOnlyIfTheyAreStrings) {
    const Json::Object object = *parseJsonObject(
        R"({"s":"text","e":"","n":1,"b":true,"z":null,"a":["text"],"o":{"s":"x"}})");
    ASSERT_NE(stringMember(object, "s"), nullptr);
    EXPECT_EQ(*stringMember(object, "s"), "text");
    ASSERT_NE(stringMember(object, "e"), nullptr);
    EXPECT_EQ(*stringMember(object, "e"), "");
    for (const char* name : {"n", "b", "z", "a", "o", "absent", "S", "", "s "}) {
        EXPECT_EQ(stringMember(object, name), nullptr) << name;
    }
}

TEST(JsonMembers, AreTrueOnlyIfTheyAreTheLiteral) {
    const Json::Object object = *parseJsonObject(
        R"({"t":true,"f":false,"one":1,"s":"true","z":null,"a":[true],"o":{"t":true}})");
    EXPECT_TRUE(isTrueMember(object, "t"));
    for (const char* name : {"f", "one", "s", "z", "a", "o", "absent", "T", ""}) {
        EXPECT_FALSE(isTrueMember(object, name)) << name;
    }
}

// Of equal meaning and on one line; the spelling is the writer's own.
void expectRoundTrip(const Json& value) {
    const std::optional<std::string> text = writeJson(value);
    ASSERT_TRUE(text);
    EXPECT_EQ(text->find('\n'), std::string::npos) << *text;
    EXPECT_EQ(parseJson(*text), value) << *text;
}

TEST(JsonWrite, ComesBackAsItWas) {
    expectRoundTrip(Json(Json::Object()));
    expectRoundTrip(Json(Json::Array()));
    expectRoundTrip(Json(Json::Object{
        {"null", Json()},
        {"true", Json(true)},
        {"false", Json(false)},
        {"number", Json(-1.5)},
        {"text", Json("a")},
        {"array", Json(Json::Array{Json(1.0), Json(Json::Array()), Json("x")})},
        {"object", Json(Json::Object{{"", Json(Json::Object{{"deep", Json(false)}})}})},
    }));
}

TEST(JsonWrite, KeepsEveryTextWhole) {
    for (const std::string_view text :
         {""sv, " "sv, "line\nfeed\r\ttab"sv, "\"quoted\" \\ /slash/"sv, "a\0b"sv, "\x01\x1f\x7f"sv,
          "\u00E9\u20AC\U0001F4FA\U0010FFFF"sv, "\u0080\u0085\u2028\u2029\uFEFF\uFFFF"sv,
          "</script>"sv, "'single'"sv, "$HOME %PATH% `x`"sv}) {
        expectRoundTrip(Json(Json::Object{{"text", Json(text)}}));
        expectRoundTrip(Json(Json::Object{{std::string(text), Json(true)}}));
    }
    expectRoundTrip(Json(Json::Object{{"text", Json(std::string(1'000'000, '\n'))}}));
}

TEST(JsonWrite, IsCompact) {
    EXPECT_EQ(writeJson(Json(Json::Object{{"a", Json(true)}})), R"({"a":true})");
    EXPECT_EQ(writeJson(Json(Json::Object{{"a", Json("b c")}})), R"({"a":"b c"})");
    EXPECT_EQ(writeJson(Json(Json::Object{{"a", Json(Json::Array{Json(), Json(false)})}})),
              R"({"a":[null,false]})");
}

TEST(JsonWrite, SpellsBooleansAsBooleans) {
    const std::string text = *writeJson(Json(Json::Object{{"a", Json(true)}, {"b", Json(false)}}));
    EXPECT_NE(text.find("true"), std::string::npos);
    EXPECT_NE(text.find("false"), std::string::npos);
    EXPECT_EQ(text.find('1'), std::string::npos);
    EXPECT_EQ(text.find('0'), std::string::npos);
}

TEST(JsonWrite, RefusesWhatIsNotUtf8) {
    for (const std::string_view bytes :
         {"\xff"sv, "caf\xE9"sv, "\xC3"sv, "\xC0\x80"sv, "\xED\xA0\x80"sv, "\xF4\x90\x80\x80"sv,
          "good \xE2\x82"sv}) {
        EXPECT_EQ(writeJson(Json(Json::Object{{"text", Json(bytes)}})), std::nullopt);
        EXPECT_EQ(writeJson(Json(Json::Object{{std::string(bytes), Json(true)}})), std::nullopt);
        EXPECT_EQ(writeJson(Json(Json::Object{
                      {"deep", Json(Json::Array{Json(Json::Object{{"text", Json(bytes)}})})}})),
                  std::nullopt);
    }
}

}  // namespace
}  // namespace veltrix
