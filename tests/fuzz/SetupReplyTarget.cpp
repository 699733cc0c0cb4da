// Any bytes as the output of a real first-run process: every request gets exactly one reply, and
// exactly the one that the lines of the output make it.
#include "fuzz/FuzzTarget.h"
#include "setup/SetupIPC.h"
#include "support/ResourceFixture.h"
#include "support/VirtualDispatcher.h"

#include <algorithm>
#include <vector>

namespace veltrix::test {
namespace {

constexpr int kRequests = 4;
// Less than a pipe holds, so that the process never waits for somebody who reads no more.
constexpr std::size_t kMostOutput = 60'000;

// A fixture child's script that prints the bytes, ends its output and lives on.
std::string printing(std::string_view bytes) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string script = "print ";
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        script.append("\\x").append(1, kDigits[value / 16]).append(1, kDigits[value % 16]);
    }
    return script + "\nclose-output\ndrop-input\n";
}

// The bytes up to a line feed, the end, or one more than a line may have.
Reply nextReply(std::string_view& output) {
    constexpr std::size_t kLimit = 8192;
    const std::size_t end = std::min(output.find('\n'), output.size());
    if (end > kLimit) {
        output.remove_prefix(kLimit + 1);
        return setupFailureReply();
    }
    const std::string_view line = output.substr(0, end);
    output.remove_prefix(std::min(end + 1, output.size()));
    return parseJsonObject(line).value_or(setupFailureReply());
}

}  // namespace
}  // namespace veltrix::test

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace veltrix;
    static const test::ResourceFixture resources;
    const std::string output = test::expanded(test::asText(data, size));
    if (output.size() > test::kMostOutput) {
        return -1;
    }
    resources.script("desktop/first-run.mjs", test::printing(output));

    test::VirtualDispatcher dispatcher;
    const auto channel = SetupIPC::make(
        resources.node(), "/home",
        {dispatcher, resources.asFunction(), [] { return std::vector<std::string>(); }});
    std::vector<Reply> replies;
    int closed = 0;
    for (int request = 0; request < test::kRequests; ++request) {
        channel->request("enrollment.poll", {},
                         [&replies](const Reply& reply) { replies.push_back(reply); });
    }
    channel->close([&closed] { ++closed; });
    dispatcher.settle();

    test::require(replies.size() == test::kRequests, "one reply a request");
    test::require(closed == 1, "closed once");
    std::string_view rest = output;
    for (const Reply& reply : replies) {
        test::require(reply == test::nextReply(rest), "the reply that the line makes");
    }
    return 0;
}
