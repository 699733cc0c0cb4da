// JSON on Linux: nlohmann's parser and writer behind our own value type. GNUstep's own JSON class
// is far too lax and crashes on some inputs, so it is not an option.
#include "common/Json.h"

#include <nlohmann/json.hpp>

#include <cmath>

namespace veltrix {
namespace {

// Builds the value without recursion; every refusal simply stops the parser.
class Builder final : public nlohmann::json_sax<nlohmann::json> {
  public:
    [[nodiscard]] Json take() { return std::move(root_); }

    bool null() override { return place(Json()); }
    bool boolean(bool value) override { return place(Json(value)); }
    bool number_integer(number_integer_t value) override {
        return place(Json(static_cast<double>(value)));
    }
    bool number_unsigned(number_unsigned_t value) override {
        return place(Json(static_cast<double>(value)));
    }
    bool number_float(number_float_t value, const string_t&) override {
        return std::isfinite(value) && place(Json(value));
    }
    bool string(string_t& value) override { return place(Json(std::move(value))); }
    bool binary(binary_t&) override { return false; }
    bool start_object(std::size_t) override { return open(Json(Json::Object())); }
    bool end_object() override { return close(); }
    bool start_array(std::size_t) override { return open(Json(Json::Array())); }
    bool end_array() override { return close(); }
    bool key(string_t& name) override {
        name_ = std::move(name);
        return true;
    }
    bool parse_error(std::size_t, const std::string&, const nlohmann::detail::exception&) override {
        return false;
    }

  private:
    // Where the next value goes: the innermost open container, or the root. The pointer stays good
    // while its container is open, for only the innermost one grows.
    Json* slot(Json value) {
        if (open_.empty()) {
            root_ = std::move(value);
            return &root_;
        }
        if (Json::Object* object = open_.back()->object()) {
            return &object->insert_or_assign(std::move(name_), std::move(value)).first->second;
        }
        return &open_.back()->array()->emplace_back(std::move(value));
    }

    bool place(Json value) {
        slot(std::move(value));
        return true;
    }

    bool open(Json container) {
        if (open_.size() == kJsonDepthLimit) {
            return false;
        }
        open_.push_back(slot(std::move(container)));
        return true;
    }

    bool close() {
        open_.pop_back();
        return true;
    }

    Json root_;
    std::vector<Json*> open_;
    std::string name_;
};

nlohmann::json converted(const Json& value) {
    if (const bool* boolean = value.boolean()) {
        return *boolean;
    }
    if (const double* number = value.number()) {
        return *number;
    }
    if (const std::string* string = value.string()) {
        return *string;
    }
    if (const Json::Array* array = value.array()) {
        nlohmann::json out = nlohmann::json::array();
        for (const Json& item : *array) {
            out.push_back(converted(item));
        }
        return out;
    }
    if (const Json::Object* object = value.object()) {
        nlohmann::json out = nlohmann::json::object();
        for (const auto& [name, item] : *object) {
            out[name] = converted(item);
        }
        return out;
    }
    return nullptr;
}

}  // namespace

std::optional<Json> parseJson(std::string_view bytes) {
    // The parser takes a NUL byte for the end of its input and would not look behind it.
    if (bytes.find('\0') != std::string_view::npos) {
        return std::nullopt;
    }
    Builder builder;
    try {
        if (!nlohmann::json::sax_parse(bytes, &builder)) {
            return std::nullopt;
        }
    } catch (const nlohmann::json::exception&) {
        return std::nullopt;
    }
    return builder.take();
}

std::optional<std::string> writeJson(const Json& value) {
    try {
        return converted(value).dump();
    } catch (const nlohmann::json::exception&) {
        return std::nullopt;
    }
}

}  // namespace veltrix
