// Which pages a script may have opened in the person's browser. Pure; any thread.
#pragma once

#include <string_view>

namespace veltrix {

// True for a URL (RFC 3986, 3) whose scheme is "https" in exactly this spelling and whose
// authority carries neither a user name nor a password, not even empty ones. Anything that
// RFC 3986 does not allow in a URL unescaped (controls, spaces, backslashes, non-ASCII letters,
// a stray "%") makes it no URL: browsers disagree about such texts, and so might we with them.
[[nodiscard]] bool isBrowserPage(std::string_view url);

}  // namespace veltrix
