#include "fuzz/JsonReference.h"

#include <cmath>
#include <cstdlib>
#include <string>

namespace veltrix::test {
namespace {

constexpr int kDepthLimit = 512;

class Reader {
  public:
    explicit Reader(std::string_view bytes) : rest_(bytes) {}

    bool document() {
        take("\xEF\xBB\xBF");
        space();
        const bool read = value(0);
        space();
        return read && rest_.empty();
    }

  private:
    bool take(std::string_view text) {
        const bool there = rest_.substr(0, text.size()) == text;
        rest_.remove_prefix(there ? text.size() : 0);
        return there;
    }

    void space() {
        while (take(" ") || take("\t") || take("\n") || take("\r")) {
        }
    }

    bool value(int depth) {
        if (rest_.empty()) {
            return false;
        }
        switch (rest_.front()) {
        case '{':
            return container(depth, '}', true);
        case '[':
            return container(depth, ']', false);
        case '"':
            return string();
        default:
            return take("true") || take("false") || take("null") || number();
        }
    }

    bool container(int depth, char end, bool named) {
        const std::string_view closing(&end, 1);
        rest_.remove_prefix(1);
        space();
        if (depth == kDepthLimit) {
            return false;
        }
        if (take(closing)) {
            return true;
        }
        do {
            space();
            if (named) {
                if (!string()) {
                    return false;
                }
                space();
                if (!take(":")) {
                    return false;
                }
                space();
            }
            if (!value(depth + 1)) {
                return false;
            }
            space();
        } while (take(","));
        return take(closing);
    }

    bool digits() {
        const std::size_t end = rest_.find_first_not_of("0123456789");
        const std::size_t count = end == std::string_view::npos ? rest_.size() : end;
        rest_.remove_prefix(count);
        return count > 0;
    }

    bool number() {
        const std::string_view start = rest_;
        take("-");
        if (!take("0") && !digits()) {
            return false;
        }
        if (take(".") && !digits()) {
            return false;
        }
        if (take("e") || take("E")) {
            if (!take("+")) {
                take("-");
            }
            if (!digits()) {
                return false;
            }
        }
        const std::string text(start.substr(0, start.size() - rest_.size()));
        return std::isfinite(std::strtod(text.c_str(), nullptr));
    }

    // Four hexadecimal digits, or -1.
    long codeUnit() {
        if (rest_.size() < 4 || rest_.substr(0, 4).find_first_not_of("0123456789abcdefABCDEF") !=
                                    std::string_view::npos) {
            return -1;
        }
        const long unit = std::strtol(std::string(rest_.substr(0, 4)).c_str(), nullptr, 16);
        rest_.remove_prefix(4);
        return unit;
    }

    bool escape() {
        if (take("u")) {
            const long unit = codeUnit();
            if (unit < 0xD800 || unit > 0xDFFF) {
                return unit >= 0;
            }
            if (unit > 0xDBFF || !take("\\u")) {
                return false;
            }
            const long second = codeUnit();
            return second >= 0xDC00 && second <= 0xDFFF;
        }
        for (const char* const letter : {"\"", "\\", "/", "b", "f", "n", "r", "t"}) {
            if (take(letter)) {
                return true;
            }
        }
        return false;
    }

    // RFC 3629, 4: neither overlong nor a surrogate nor beyond U+10FFFF.
    bool character() {
        const auto byte = [this](std::size_t at) {
            return at < rest_.size() ? static_cast<unsigned char>(rest_[at]) : 0U;
        };
        const unsigned first = byte(0);
        std::size_t length = 1;
        unsigned low = 0x80;
        unsigned high = 0xBF;
        if (first < 0x80) {
            if (first < 0x20) {
                return false;
            }
        } else if (first >= 0xC2 && first <= 0xDF) {
            length = 2;
        } else if (first >= 0xE0 && first <= 0xEF) {
            length = 3;
            low = first == 0xE0 ? 0xA0 : low;
            high = first == 0xED ? 0x9F : high;
        } else if (first >= 0xF0 && first <= 0xF4) {
            length = 4;
            low = first == 0xF0 ? 0x90 : low;
            high = first == 0xF4 ? 0x8F : high;
        } else {
            return false;
        }
        for (std::size_t at = 1; at < length; ++at) {
            if (byte(at) < low || byte(at) > high) {
                return false;
            }
            low = 0x80;
            high = 0xBF;
        }
        rest_.remove_prefix(length);
        return true;
    }

    bool string() {
        if (!take("\"")) {
            return false;
        }
        while (!rest_.empty()) {
            if (take("\"")) {
                return true;
            }
            if (take("\\") ? !escape() : !character()) {
                return false;
            }
        }
        return false;
    }

    std::string_view rest_;
};

}  // namespace

bool isJson(std::string_view bytes) {
    return Reader(bytes).document();
}

}  // namespace veltrix::test
