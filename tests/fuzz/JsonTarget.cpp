// Any bytes as a reply: taken for JSON exactly when they are, and the value survives being written.
#include "common/Json.h"
#include "fuzz/FuzzTarget.h"
#include "fuzz/JsonReference.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace veltrix;
    using test::require;
    const std::string_view bytes = test::asText(data, size);
    const std::optional<Json> value = parseJson(bytes);
    require(value.has_value() == test::isJson(bytes), "what is JSON and what is not");
    const std::optional<Json::Object> object = parseJsonObject(bytes);
    if (!value) {
        require(!object, "an object where there is no value");
        return 0;
    }
    const Json::Object* const members = value->object();
    require(object.has_value() == (members != nullptr), "objects and other values");
    require(!object || *object == *members, "the members of an object");
    const std::optional<std::string> text = writeJson(*value);
    require(text.has_value(), "what was read can be written");
    require(text->find('\n') == std::string::npos, "no line feed in a line");
    require(parseJson(*text) == value, "what was written reads the same");
    return 0;
}
