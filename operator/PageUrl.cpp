#include "operator/PageUrl.h"

#include <algorithm>
#include <cstddef>

namespace veltrix {
namespace {

constexpr std::string_view kScheme = "https:";
constexpr std::string_view kAuthorityMark = "//";

bool isAlphanumeric(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isHexDigit(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

bool isOneOf(char c, std::string_view set) {
    return set.find(c) != std::string_view::npos;
}

// RFC 3986, 2: unreserved and reserved characters, and "%" only before two hexadecimal digits.
// Square brackets belong to an IP literal in the authority, "#" begins the fragment.
bool isSpelledRight(std::string_view part, std::string_view alsoAllowed) {
    for (std::size_t i = 0; i < part.size(); ++i) {
        const char c = part[i];
        if (c == '%') {
            if (i + 2 >= part.size() || !isHexDigit(part[i + 1]) || !isHexDigit(part[i + 2])) {
                return false;
            }
            i += 2;
        } else if (!isAlphanumeric(c) && !isOneOf(c, "-._~!$&'()*+,;=") &&
                   !isOneOf(c, alsoAllowed)) {
            return false;
        }
    }
    return true;
}

bool isDigits(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

// RFC 3986, 3.2, without user information: a name, an IPv4 address or a bracketed IP literal,
// then perhaps a port.
bool isHostAndPort(std::string_view authority) {
    if (authority.starts_with('[')) {
        const std::size_t end = authority.find(']');
        if (end == std::string_view::npos) {
            return false;
        }
        const std::string_view port = authority.substr(end + 1);
        return isSpelledRight(authority.substr(1, end - 1), ":") &&
               (port.empty() || (port.starts_with(':') && isDigits(port.substr(1))));
    }
    const std::size_t colon = authority.find(':');
    return isSpelledRight(authority.substr(0, colon), "") &&
           (colon == std::string_view::npos || isDigits(authority.substr(colon + 1)));
}

}  // namespace

bool isBrowserPage(std::string_view url) {
    if (!url.starts_with(kScheme)) {
        return false;
    }
    std::string_view rest = url.substr(kScheme.size());
    const std::size_t hash = rest.find('#');
    if (hash != std::string_view::npos) {
        if (!isSpelledRight(rest.substr(hash + 1), ":@/?")) {
            return false;
        }
        rest = rest.substr(0, hash);
    }
    if (rest.starts_with(kAuthorityMark)) {
        rest.remove_prefix(kAuthorityMark.size());
        const std::size_t end = std::min(rest.find_first_of("/?"), rest.size());
        if (!isHostAndPort(rest.substr(0, end))) {
            return false;
        }
        rest = rest.substr(end);
    }
    return isSpelledRight(rest, ":@/?");
}

}  // namespace veltrix
