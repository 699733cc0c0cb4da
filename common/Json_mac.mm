// JSON on macOS: NSJSONSerialization behind our own value type, with the strictness it lacks: it
// would also take UTF-16 and UTF-32, which no child of ours speaks.
#include "common/Json.h"
#include "common/RetainPtr.h"
#include "common/Text.h"

#import <Foundation/Foundation.h>

namespace veltrix {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// NSJSONSerialization gives Booleans and numbers the one type NSNumber; only the class of the two
// Boolean objects tells them apart.
bool isBoolean(NSNumber* number) {
    return [number class] == [@(YES) class];
}

// `depth` is the number of containers around the value.
std::optional<Json> fromFoundation(id value, std::size_t depth);

std::optional<Json> fromArray(NSArray* array, std::size_t depth) {
    Json::Array out;
    for (id item in array) {
        std::optional<Json> converted = fromFoundation(item, depth + 1);
        if (!converted) {
            return std::nullopt;
        }
        out.push_back(std::move(*converted));
    }
    return Json(std::move(out));
}

std::optional<Json> fromDictionary(NSDictionary* dictionary, std::size_t depth) {
    Json::Object out;
    for (id key in dictionary) {
        NSString* const name = dynamicCast<NSString>(key);
        std::optional<Json> converted = fromFoundation([dictionary objectForKey:key], depth + 1);
        if (name == nil || !converted) {
            return std::nullopt;
        }
        out.insert_or_assign(toUtf8(name), std::move(*converted));
    }
    return Json(std::move(out));
}

std::optional<Json> fromFoundation(id value, std::size_t depth) {
    if (NSString* const string = dynamicCast<NSString>(value)) {
        return Json(toUtf8(string));
    }
    if (NSNumber* const number = dynamicCast<NSNumber>(value)) {
        return isBoolean(number) ? Json(static_cast<bool>([number boolValue]))
                                 : Json([number doubleValue]);
    }
    if (value == [NSNull null]) {
        return Json();
    }
    if (depth == kJsonDepthLimit) {
        return std::nullopt;
    }
    if (NSArray* const array = dynamicCast<NSArray>(value)) {
        return fromArray(array, depth);
    }
    if (NSDictionary* const dictionary = dynamicCast<NSDictionary>(value)) {
        return fromDictionary(dictionary, depth);
    }
    return std::nullopt;
}

// Nil for a string that is not valid UTF-8.
id toFoundation(const Json& value) {
    if (const bool* boolean = value.boolean()) {
        return @(static_cast<BOOL>(*boolean));
    }
    if (const double* number = value.number()) {
        return @(*number);
    }
    if (const std::string* string = value.string()) {
        return toNSString(*string);
    }
    if (const Json::Array* array = value.array()) {
        NSMutableArray* const out = [NSMutableArray array];
        for (const Json& item : *array) {
            id const converted = toFoundation(item);
            if (converted == nil) {
                return nil;
            }
            [out addObject:converted];
        }
        return out;
    }
    if (const Json::Object* object = value.object()) {
        NSMutableDictionary* const out = [NSMutableDictionary dictionary];
        for (const auto& [name, item] : *object) {
            NSString* const key = toNSString(name);
            id const converted = toFoundation(item);
            if (key == nil || converted == nil) {
                return nil;
            }
            [out setObject:converted forKey:key];
        }
        return out;
    }
    return [NSNull null];
}

}  // namespace

std::optional<Json> parseJson(std::string_view bytes) {
    if (bytes.starts_with(kByteOrderMark)) {
        bytes.remove_prefix(kByteOrderMark.size());
    }
    @autoreleasepool {
        NSData* const data = [NSData dataWithBytes:bytes.data() length:bytes.size()];
        const RetainPtr<NSString> text =
            adoptNS([[NSString alloc] initWithData:data encoding:NSUTF8StringEncoding]);
        if (!text || bytes.find('\0') != std::string_view::npos) {
            return std::nullopt;
        }
        id const value = [NSJSONSerialization JSONObjectWithData:data
                                                         options:NSJSONReadingFragmentsAllowed
                                                           error:nullptr];
        return value == nil ? std::nullopt : fromFoundation(value, 0);
    }
}

std::optional<std::string> writeJson(const Json& value) {
    @autoreleasepool {
        id const object = toFoundation(value);
        // isValidJSONObject: first, for the writer raises an exception instead of failing.
        if (object == nil || ![NSJSONSerialization isValidJSONObject:object]) {
            return std::nullopt;
        }
        NSData* const data = [NSJSONSerialization dataWithJSONObject:object
                                                             options:0
                                                               error:nullptr];
        if (data == nil) {
            return std::nullopt;
        }
        return std::string(static_cast<const char*>([data bytes]), [data length]);
    }
}

}  // namespace veltrix
