#include "support/OpenedThings.h"

#include "common/Text.h"

namespace veltrix::test {
namespace {

std::vector<std::string> opened;
bool refusing = false;

BOOL open(id, SEL, NSURL* url) {
    opened.push_back(toUtf8([url isFileURL] ? [url path] : [url absoluteString]));
    return !refusing;
}

}  // namespace

OpenedThings::OpenedThings() : swap_([NSWorkspace class], @selector(openURL:), open) {
    opened.clear();
    refusing = false;
}

const std::vector<std::string>& OpenedThings::list() const {
    return opened;
}

void OpenedThings::refuse() {
    refusing = true;
}

}  // namespace veltrix::test
