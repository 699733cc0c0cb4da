// Any text as a page to open: nothing dubious is ever accepted, and no innocent change of an
// accepted page makes it dubious.
#include "fuzz/FuzzTarget.h"
#include "operator/PageUrl.h"

#include <algorithm>

namespace veltrix::test {
namespace {

// RFC 3986, 2: everything that may stand in a URL at all.
constexpr std::string_view kCharacters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"
                                         "0123456789-._~:/?#[]@!$&'()*+,;=%";
constexpr std::string_view kHexadecimal = "0123456789ABCDEFabcdef";

bool escapesAreWhole(std::string_view url) {
    for (std::size_t at = url.find('%'); at < url.size(); at = url.find('%', at + 1)) {
        const std::string_view digits = url.substr(at + 1, 2);
        if (digits.size() != 2 ||
            digits.find_first_not_of(kHexadecimal) != std::string_view::npos) {
            return false;
        }
    }
    return true;
}

void checkAccepted(const std::string& url) {
    const std::string scheme = "https:";
    require(url.starts_with(scheme), "another scheme");
    require(url.find_first_not_of(kCharacters) == std::string::npos, "a character of no URL");
    require(escapesAreWhole(url), "half an escape");
    require(std::count(url.begin(), url.end(), '#') <= 1, "two fragments");
    require(!isBrowserPage("http" + url.substr(5)), "without its s");
    require(!isBrowserPage("HTTPS" + url.substr(5)), "in other letters");
    require(!isBrowserPage(" " + url), "behind a space");
    const bool hasFragment = url.find('#') != std::string::npos;
    require(isBrowserPage(url + (hasFragment ? "a" : "#a")), "with a longer fragment");
    for (const char bad : {'\0', '\n', ' ', '\\', '"', '<', '\x7F', '\x80', '%'}) {
        require(!isBrowserPage(url + bad), "with a bad end");
    }
    if (url.substr(scheme.size()).starts_with("//")) {
        const std::string rest = url.substr(scheme.size() + 2);
        const std::string authority = rest.substr(0, rest.find_first_of("/?#"));
        require(authority.find('@') == std::string::npos, "a user name or a password");
        for (const char* const user : {"@", "sam@", ":word@", "sam:word@", "%40@"}) {
            require(!isBrowserPage("https://" + (user + rest)), "with a user");
        }
    }
}

}  // namespace
}  // namespace veltrix::test

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string url(veltrix::test::asText(data, size));
    if (veltrix::isBrowserPage(url)) {
        veltrix::test::checkAccepted(url);
    }
    return 0;
}
