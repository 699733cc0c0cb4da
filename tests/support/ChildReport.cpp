#include "support/ChildReport.h"

#include "common/Files.h"
#include "support/TempFolder.h"
#include "support/WaitFor.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string_view>

namespace veltrix::test {
namespace {

void put(ChildReport& report, std::string_view name, const std::string& value) {
    const auto number = [&value] { return std::stoi(value); };
    if (name == "argument") {
        report.arguments.push_back(value);
    } else if (name == "variable") {
        report.environment.push_back(value);
    } else if (name == "descriptor") {
        report.descriptors.push_back(number());
    } else if (name == "blocked") {
        report.blockedSignals.push_back(number());
    } else if (name == "handled") {
        report.handledSignals.push_back(number());
    } else if (name == "pid") {
        report.pid = number();
    } else if (name == "parent") {
        report.parent = number();
    } else if (name == "group") {
        report.group = number();
    } else if (name == "errors") {
        report.errorDevice = std::stol(value);
    } else if (name == "folder") {
        report.folder = value;
    } else {
        ADD_FAILURE() << "unknown record " << name;
    }
}

}  // namespace

ChildReport awaitReport(const std::string& path) {
    ChildReport report;
    if (!waitFor([&path] { return fileExists(path); })) {
        ADD_FAILURE() << "no report at " << path;
        return report;
    }
    const std::string text = contentsOf(path);
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t space = text.find(' ', at);
        const std::size_t lineEnd = text.find('\n', space);
        const std::size_t length = std::stoul(text.substr(space + 1, lineEnd - space - 1));
        put(report, std::string_view(text).substr(at, space - at),
            text.substr(lineEnd + 1, length));
        at = lineEnd + 1 + length + 1;
    }
    std::sort(report.descriptors.begin(), report.descriptors.end());
    return report;
}

}  // namespace veltrix::test
