#include "common/Json.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace veltrix {
namespace {

using namespace std::string_view_literals;

std::string nested(std::size_t depth, std::string_view innermost = "") {
    return std::string(depth, '[').append(innermost).append(depth, ']');
}

std::string nestedObjects(std::size_t depth) {
    std::string text;
    for (std::size_t i = 1; i < depth; ++i) {
        text += R"({"a":)";
    }
    return text + "{}" + std::string(depth - 1, '}');
}

const std::string* onlyString(const std::optional<Json>& value) {
    return value ? value->string() : nullptr;
}

TEST(JsonParse, ReadsTheFourLiteralsAsWhatTheyAre) {
    ASSERT_TRUE(parseJson("null"));
    EXPECT_TRUE(parseJson("null")->isNull());
    EXPECT_EQ(parseJson("true"), Json(true));
    EXPECT_EQ(parseJson("false"), Json(false));
}

TEST(JsonParse, ReadsNumbers) {
    const std::pair<std::string_view, double> kNumbers[] = {
        {"0", 0},
        {"-0", 0},
        {"1", 1},
        {"-1", -1},
        {"10", 10},
        {"1.5", 1.5},
        {"0.25", 0.25},
        {"-0.0", 0},
        {"1e3", 1000},
        {"1E3", 1000},
        {"1e+3", 1000},
        {"25e-2", 0.25},
        {"0e1", 0},
        {"0e+1", 0},
        {"1.0e1", 10},
        {"1e-400", 0},
        {"123456789012345678901234567890", 1.2345678901234568e29},
        {"-9223372036854775808", -9223372036854775808.0},
        {"18446744073709551615", 18446744073709551615.0},
        {"1.7976931348623157e308", std::numeric_limits<double>::max()}};
    for (const auto& [text, number] : kNumbers) {
        const std::optional<Json> value = parseJson(text);
        ASSERT_TRUE(value) << text;
        ASSERT_NE(value->number(), nullptr) << text;
        EXPECT_EQ(*value->number(), number) << text;
    }
}

TEST(JsonParse, RefusesMisspelledNumbers) {
    for (const std::string_view text :
         {"01"sv,    "-01"sv,      "00"sv,        "+1"sv,    "-"sv,     "--1"sv,
          "1."sv,    ".5"sv,       "-.5"sv,       "1.e3"sv,  "1e"sv,    "1e+"sv,
          "1e1.5"sv, "1ee1"sv,     "0x10"sv,      "1_000"sv, "1 000"sv, "NaN"sv,
          "-NaN"sv,  "Infinity"sv, "-Infinity"sv, "inf"sv,   "nan"sv,   "1a"sv,
          "1f"sv,    "0b1"sv,      "1.2.3"sv,     "- 1"sv,   "\uFF11"sv}) {
        EXPECT_FALSE(parseJson(text)) << text;
        EXPECT_FALSE(parseJson("[" + std::string(text) + "]")) << text;
    }
}

TEST(JsonParse, RefusesNumbersTooLargeForADouble) {
    for (const std::string_view text : {"1e309"sv, "-1e309"sv, "1e999999999999"sv}) {
        EXPECT_FALSE(parseJson(text)) << text;
    }
    EXPECT_FALSE(parseJson("1" + std::string(400, '0')));
}

TEST(JsonParse, ReadsStringsWithEveryEscape) {
    const std::pair<std::string_view, std::string_view> kStrings[] = {
        {R"("")", ""sv},
        {R"("a")", "a"sv},
        {R"("\"\\\/\b\f\n\r\t")", "\"\\/\b\f\n\r\t"sv},
        {R"("\u0041\u00e9\u00E9\u20AC")", "A\u00E9\u00E9\u20AC"sv},
        {R"("\uD83D\uDCFA")", "\U0001F4FA"sv},
        {R"("a\u0000b")", "a\0b"sv},
        {R"("\u001f\u007f\u0080")", "\x1f\x7f\u0080"sv},
        {R"("\uFFFF\uFFFE")", "\uFFFF\uFFFE"sv},
        {"\"\u00E9\u20AC\U0001F4FA\U0010FFFF\"", "\u00E9\u20AC\U0001F4FA\U0010FFFF"sv},
        {"\"\x7f\u0085\u2028\u2029\"", "\x7f\u0085\u2028\u2029"sv},
        {R"("\\u0041")", "\\u0041"sv},
        {R"("/")", "/"sv},
    };
    for (const auto& [text, bytes] : kStrings) {
        const std::optional<Json> value = parseJson(text);
        ASSERT_NE(onlyString(value), nullptr) << text;
        EXPECT_EQ(*onlyString(value), bytes) << text;
    }
}

TEST(JsonParse, RefusesMisspelledStrings) {
    for (const std::string_view text :
         {"\""sv,          "\"a"sv,           "a\""sv,         "'a'"sv,      "\"\\\""sv,
          "\"\\a\""sv,     "\"\\x41\""sv,     "\"\\U0041\""sv, "\"\\u\""sv,  "\"\\u004\""sv,
          "\"\\u00g1\""sv, "\"\\u 041\""sv,   "\"\\0\""sv,     "\"\\'\""sv,  "\"a\nb\""sv,
          "\"a\tb\""sv,    "\"a\rb\""sv,      "\"a\0b\""sv,    "\"\x1f\""sv, "\"\\\n\""sv,
          "\"\\u-123\""sv, "\u201Ca\u201D"sv, "\"a\"b\""sv}) {
        EXPECT_FALSE(parseJson(text)) << text;
    }
}

TEST(JsonParse, RefusesHalvesOfSurrogatePairs) {
    for (const std::string_view text :
         {R"("\uD83D")"sv, R"("\uDCFA")"sv, R"("\uD83Dx")"sv, R"("\uD83D\n")"sv,
          R"("\uD83D\u0041")"sv, R"("\uD83D\uD83D")"sv, R"("\uDCFA\uD83D")"sv,
          R"("\uD83D\uDC")"sv}) {
        EXPECT_FALSE(parseJson(text)) << text;
    }
}

TEST(JsonParse, RefusesWhatIsNotUtf8) {
    for (const std::string_view bytes :
         {"\xff"sv, "\xfe"sv, "\x80"sv, "\xbf"sv, "\xC3"sv, "\xC3\x28"sv, "\xC0\x80"sv,
          "\xC1\xBF"sv, "\xE0\x80\x80"sv, "\xE0\x9F\xBF"sv, "\xE2\x82"sv, "\xED\xA0\x80"sv,
          "\xED\xBF\xBF"sv, "\xF0\x80\x80\x80"sv, "\xF0\x9F\x93"sv, "\xF4\x90\x80\x80"sv,
          "\xF5\x80\x80\x80"sv, "\xF8\x88\x80\x80\x80"sv, "caf\xE9"sv}) {
        EXPECT_FALSE(parseJson("\"" + std::string(bytes) + "\"")) << bytes;
        EXPECT_FALSE(parseJson("{\"" + std::string(bytes) + "\":1}")) << bytes;
        EXPECT_FALSE(parseJson(std::string(bytes) + "{}")) << bytes;
        EXPECT_FALSE(parseJson("{}" + std::string(bytes))) << bytes;
    }
}

TEST(JsonParse, RefusesUtf16AndUtf32) {
    for (const std::string_view bytes :
         {"{\0}\0"sv, "\0{\0}"sv, "\xFF\xFE{\0}\0"sv, "\xFE\xFF\0{\0}"sv, "{\0\0\0}\0\0\0"sv,
          "\0\0\0{\0\0\0}"sv, "\xFF\xFE\0\0{\0\0\0}\0\0\0"sv, "1\0"sv, "\0001"sv}) {
        EXPECT_FALSE(parseJson(bytes)) << bytes;
    }
}

TEST(JsonParse, ReadsContainers) {
    EXPECT_EQ(parseJson("[]"), Json(Json::Array()));
    EXPECT_EQ(parseJson("{}"), Json(Json::Object()));
    EXPECT_EQ(parseJson(R"([1,"a",null,true,[],{}])"),
              Json(Json::Array{Json(1.0), Json("a"), Json(), Json(true), Json(Json::Array()),
                               Json(Json::Object())}));
    EXPECT_EQ(parseJson(R"({"":0,"a":{"b":[{"c":false}]}})"),
              Json(Json::Object{{"", Json(0.0)},
                                {"a", Json(Json::Object{{"b", Json(Json::Array{Json(Json::Object{
                                                                  {"c", Json(false)}})})}})}}));
}

TEST(JsonParse, ReadsContainersAfterNestedOnes) {
    EXPECT_EQ(parseJson(R"({"a":[[1],[2]],"b":{"c":{}},"d":3})"),
              Json(Json::Object{{"a", Json(Json::Array{Json(Json::Array{Json(1.0)}),
                                                       Json(Json::Array{Json(2.0)})})},
                                {"b", Json(Json::Object{{"c", Json(Json::Object())}})},
                                {"d", Json(3.0)}}));
}

TEST(JsonParse, RefusesMisspelledContainers) {
    for (const std::string_view text : {"["sv,
                                        "]"sv,
                                        "[1"sv,
                                        "[1,"sv,
                                        "[,]"sv,
                                        "[1,]"sv,
                                        "[,1]"sv,
                                        "[1,,2]"sv,
                                        "[1 2]"sv,
                                        "[1:2]"sv,
                                        "[1}"sv,
                                        "{"sv,
                                        "}"sv,
                                        "{]"sv,
                                        "{\"a\"}"sv,
                                        "{\"a\":}"sv,
                                        "{\"a\" 1}"sv,
                                        "{\"a\":1,}"sv,
                                        "{,}"sv,
                                        "{\"a\":1,,\"b\":2}"sv,
                                        "{\"a\":1 \"b\":2}"sv,
                                        "{a:1}"sv,
                                        "{'a':1}"sv,
                                        "{1:1}"sv,
                                        "{null:1}"sv,
                                        "{\"a\":1"sv,
                                        "{\"a\":1;}"sv,
                                        "{\"a\"=1}"sv,
                                        "{\"a\"::1}"sv,
                                        "{{}}"sv,
                                        "{[]:1}"sv,
                                        "[[]"sv,
                                        "[]]"sv,
                                        "(1)"sv,
                                        "<null>"sv,
                                        "[\"a\",\n4\n,1,"sv}) {
        EXPECT_FALSE(parseJson(text)) << text;
    }
}

TEST(JsonParse, RefusesMisspelledLiterals) {
    for (const std::string_view text :
         {"True"sv, "TRUE"sv, "False"sv, "Null"sv, "nul"sv, "tru"sv, "truee"sv, "nullnull"sv,
          "yes"sv, "undefined"sv, "a"sv, "t"sv, "fals"sv, "*"sv, "/"sv, "@"sv}) {
        EXPECT_FALSE(parseJson(text)) << text;
    }
}

TEST(JsonParse, KnowsNoComments) {
    for (const std::string_view text :
         {"{}//"sv, "{}/**/"sv, "/**/{}"sv, "{}#x"sv, "//\n{}"sv, "[1/**/]"sv, "[1,//\n2]"sv}) {
        EXPECT_FALSE(parseJson(text)) << text;
    }
}

TEST(JsonParse, AllowsJsonsOwnWhiteSpaceAroundEverything) {
    const std::optional<Json> expected =
        Json(Json::Object{{"a", Json(Json::Array{Json(1.0), Json(2.0)})}});
    EXPECT_EQ(parseJson(" \t\r\n{ \"a\"\t:\r[\n1 , 2 ] }\r\n \t"), expected);
    EXPECT_EQ(parseJson("{\"a\":[1,2]}\n"), expected);
}

TEST(JsonParse, KnowsNoOtherWhiteSpace) {
    for (const std::string_view text : {"\v{}"sv, "\f{}"sv, "{}\v"sv, "\u00A0{}"sv, "{}\u00A0"sv,
                                        "\u2028{}"sv, "{}\u0085"sv, "{}\u2060"sv, "[\f1]"sv}) {
        EXPECT_FALSE(parseJson(text)) << text;
    }
}

TEST(JsonParse, RefusesNothingAndWhiteSpaceAlone) {
    for (const std::string_view text : {""sv, " "sv, "\n"sv, "\t\r\n "sv, "\xEF\xBB\xBF"sv}) {
        EXPECT_FALSE(parseJson(text)) << text;
    }
}

TEST(JsonParse, RefusesAnythingAfterTheValue) {
    for (const std::string_view text :
         {"{}{}"sv, "{} {}"sv, "{}\n{}"sv, "{}x"sv, "{},"sv, "{}]"sv, "1 2"sv, "true false"sv,
          "[]\"\""sv, "{}\xEF\xBB\xBF"sv, "\"a\"b"sv, "{}null"sv}) {
        EXPECT_FALSE(parseJson(text)) << text;
    }
}

TEST(JsonParse, RefusesANulByteWhereverItStands) {
    for (const std::string_view text :
         {"\0"sv, "{}\0"sv, "\0{}"sv, "{}\0x"sv, "{}\n\0"sv, "[1,\0 2]"sv, "{\"a\0\":1}"sv,
          "1\0 2"sv, "{}\0{}"sv, "[\0]"sv}) {
        EXPECT_FALSE(parseJson(text)) << text;
    }
}

TEST(JsonParse, SkipsALeadingByteOrderMark) {
    EXPECT_EQ(parseJson("\xEF\xBB\xBF{\"a\":1}"), Json(Json::Object{{"a", Json(1.0)}}));
    EXPECT_FALSE(parseJson("\xEF\xBB\xBF\xEF\xBB\xBF{}"));
    EXPECT_FALSE(parseJson(" \xEF\xBB\xBF{}"));
    EXPECT_FALSE(parseJson("\xEF\xBB{}"));
    EXPECT_FALSE(parseJson("\xEF{}"));
}

TEST(JsonParse, LetsTheLastOfTwoMembersOfTheSameNameCount) {
    EXPECT_EQ(parseJson(R"({"a":1,"b":2,"a":3})"),
              Json(Json::Object{{"a", Json(3.0)}, {"b", Json(2.0)}}));
    EXPECT_EQ(parseJson(R"({"a":{"x":1},"a":{"y":2}})"),
              Json(Json::Object{{"a", Json(Json::Object{{"y", Json(2.0)}})}}));
    EXPECT_EQ(parseJson(R"({"ok":true,"\u006fk":false})"), Json(Json::Object{{"ok", Json(false)}}));
}

TEST(JsonParse, ReadsDownToTheDepthLimitAndNotBeyond) {
    EXPECT_EQ(kJsonDepthLimit, 512u);
    EXPECT_TRUE(parseJson(nested(512)));
    EXPECT_TRUE(parseJson(nested(512, "1")));
    EXPECT_FALSE(parseJson(nested(513)));
    EXPECT_TRUE(parseJson(nestedObjects(512)));
    EXPECT_FALSE(parseJson(nestedObjects(513)));
}

TEST(JsonParse, CountsDepthAndNotContainers) {
    std::string row = "[";
    for (int i = 0; i < 2000; ++i) {
        row += "[],{},";
    }
    EXPECT_TRUE(parseJson(row + "[]]"));
}

TEST(JsonParse, SurvivesAnyDepth) {
    EXPECT_FALSE(parseJson(nested(1'000'000)));
    EXPECT_FALSE(parseJson(std::string(1'000'000, '[')));
    EXPECT_FALSE(parseJson(std::string(1'000'000, '{')));
}

TEST(JsonParse, SurvivesBeingCutOffAnywhere) {
    const std::string text =
        R"({"ok":true,"code":"\u00e9\uD83D\uDCFA","n":[-1.5e+3,null,false,{"a":{}}]})";
    ASSERT_TRUE(parseJson(text));
    for (std::size_t length = 0; length < text.size(); ++length) {
        EXPECT_FALSE(parseJson(std::string_view(text).substr(0, length))) << length;
    }
}

TEST(JsonParse, NeverTakesANumberForABooleanOrABooleanForANumber) {
    for (const std::string_view text : {"0"sv, "1"sv, "1.0"sv, "-1"sv}) {
        EXPECT_EQ(parseJson(text)->boolean(), nullptr) << text;
    }
    for (const std::string_view text : {"true"sv, "false"sv}) {
        EXPECT_EQ(parseJson(text)->number(), nullptr) << text;
    }
}

TEST(JsonParse, OfAnObjectTakesOnlyAnObject) {
    EXPECT_EQ(parseJsonObject("{}"), Json::Object());
    EXPECT_EQ(parseJsonObject(" {\"a\":null} "), (Json::Object{{"a", Json()}}));
    for (const std::string_view text :
         {"[]"sv, "[{}]"sv, "null"sv, "true"sv, "1"sv, "\"{}\""sv, ""sv, "{"sv, "{}{}"sv}) {
        EXPECT_EQ(parseJsonObject(text), std::nullopt) << text;
    }
}

}  // namespace
}  // namespace veltrix
