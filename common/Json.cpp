#include "common/Json.h"

namespace veltrix {
namespace {

const Json* member(const Json::Object& object, std::string_view name) {
    const auto found = object.find(name);
    return found == object.end() ? nullptr : &found->second;
}

}  // namespace

const std::string* stringMember(const Json::Object& object, std::string_view name) {
    const Json* value = member(object, name);
    return value == nullptr ? nullptr : value->string();
}

bool isTrueMember(const Json::Object& object, std::string_view name) {
    const Json* value = member(object, name);
    return value != nullptr && value->boolean() != nullptr && *value->boolean();
}

std::optional<Json::Object> parseJsonObject(std::string_view bytes) {
    std::optional<Json> value = parseJson(bytes);
    if (!value || value->object() == nullptr) {
        return std::nullopt;
    }
    return std::move(*value->object());
}

}  // namespace veltrix
