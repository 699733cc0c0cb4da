// JSON values as children speak them: what was parsed, and what is sent. Plain values, any thread.
//
// The language is RFC 8259, strictly: UTF-8 only, one value and nothing after it but white space.
// Where the RFC leaves a choice, a leading byte order mark is skipped, of two members of the same
// name the last counts, a number too large for a double is an error, and so is nesting deeper than
// kJsonDepthLimit. A number is never a Boolean and a Boolean never a number.
#pragma once

#include <concepts>
#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace veltrix {

inline constexpr std::size_t kJsonDepthLimit = 512;  // as NSJSONSerialization has it

class Json {
  public:
    using Array = std::vector<Json>;
    using Object = std::map<std::string, Json, std::less<>>;

    Json() = default;  // null
    Json(std::same_as<bool> auto value) : value_(value) {}
    Json(double value) : value_(value) {}
    Json(const char* value) : value_(std::string(value)) {}
    Json(std::string value) : value_(std::move(value)) {}
    Json(std::string_view value) : value_(std::string(value)) {}
    Json(Array value) : value_(std::move(value)) {}
    Json(Object value) : value_(std::move(value)) {}

    // Null when the value is of another type.
    [[nodiscard]] const bool* boolean() const { return std::get_if<bool>(&value_); }
    [[nodiscard]] const double* number() const { return std::get_if<double>(&value_); }
    [[nodiscard]] const std::string* string() const { return std::get_if<std::string>(&value_); }
    [[nodiscard]] const Array* array() const { return std::get_if<Array>(&value_); }
    [[nodiscard]] const Object* object() const { return std::get_if<Object>(&value_); }
    [[nodiscard]] bool isNull() const { return std::holds_alternative<std::monostate>(value_); }

    [[nodiscard]] Array* array() { return std::get_if<Array>(&value_); }
    [[nodiscard]] Object* object() { return std::get_if<Object>(&value_); }

    bool operator==(const Json&) const = default;

  private:
    std::variant<std::monostate, bool, double, std::string, Array, Object> value_;
};

// What a script answers: the members of one JSON object.
using Reply = Json::Object;

// A member of the wanted type, or null when it is absent or of another type.
[[nodiscard]] const std::string* stringMember(const Json::Object& object, std::string_view name);
// Whether the member is the JSON literal true: not 1, not "true".
[[nodiscard]] bool isTrueMember(const Json::Object& object, std::string_view name);

// The value that the bytes spell, or nothing.
[[nodiscard]] std::optional<Json> parseJson(std::string_view bytes);

// The same, if it is an object at the top level.
[[nodiscard]] std::optional<Json::Object> parseJsonObject(std::string_view bytes);

// Compact JSON text without a line feed in it; nothing when a string is not valid UTF-8.
[[nodiscard]] std::optional<std::string> writeJson(const Json& value);

}  // namespace veltrix
