// Any JSON as the reply of any command: the operator is idle again, says one sentence of its own
// and one more at most, and opens nothing that the reply does not entitle it to.
#include "common/ValidPath.h"
#include "fuzz/FuzzTarget.h"
#include "operator/Operator.h"
#include "operator/Outcomes.h"
#include "operator/PageUrl.h"
#include "support/RecordingShell.h"
#include "support/VirtualDispatcher.h"

#include <algorithm>
#include <array>
#include <set>

namespace veltrix::test {
namespace {

constexpr std::array<std::string_view, 8> kWords{"status", "configuration", "install", "start",
                                                 "shares", "check",         "stop",    ""};

bool isKnownSentence(const std::string& sentence) {
    static const std::set<std::string_view> known = [] {
        std::set<std::string_view> sentences{kUnknownOutcome};
        for (const Outcome& row : operatorOutcomes()) {
            sentences.insert(row.sentence);
        }
        return sentences;
    }();
    return known.count(sentence) == 1;
}

std::string after(const std::string& call, std::string_view beginning) {
    return call.starts_with(beginning) ? call.substr(beginning.size()) : std::string();
}

// What comes after the sentence of a reply that is ok.
void checkFollowUps(const std::vector<std::string>& calls, std::string_view word, bool opens) {
    std::size_t at = 0;
    if (at < calls.size() && calls[at].starts_with("node: ")) {
        require(word == "install", "who reports a runtime");
        require(validPath(after(calls[at], "node: ")), "the path of a runtime");
        require(++at < calls.size() && calls[at++] == "save", "a reported runtime is stored");
    }
    if (at == calls.size()) {
        return;
    }
    const std::string page = after(calls[at], "open page: ");
    const std::string folder = after(calls[at], "open folder: ");
    require(!page.empty() || word == "configuration", "who opens a folder");
    require(page.empty() ? validPath(folder) : isBrowserPage(page), "what is opened");
    const std::vector<std::string> rest(calls.begin() + static_cast<std::ptrdiff_t>(at) + 1,
                                        calls.end());
    const std::string_view failure = page.empty() ? kFolderNotOpened : kBrowserNotOpened;
    const std::vector<std::string> complaint{"status: " + std::string(failure), "bring forward"};
    require(rest == (opens ? std::vector<std::string>() : complaint), "what is said of an opening");
}

void check(const std::vector<std::string>& calls, const Reply& reply, std::string_view word,
           bool opens) {
    require(calls.size() >= 4, "every reply is dealt with");
    require(calls[0] == "controls on" && calls[1] == "menu actions on", "everything is enabled");
    const std::string sentence = after(calls[2], "status: ");
    require(isKnownSentence(sentence), "a sentence of the table, and never a code");
    require(calls[3] == "tool tip: " + sentence, "the tool tip is the sentence");
    const std::vector<std::string> rest(calls.begin() + 4, calls.end());
    const auto ok = reply.find("ok");
    if (ok != reply.end() && ok->second == Json(true)) {
        checkFollowUps(rest, word, opens);
    } else {
        require(rest == std::vector<std::string>{"bring forward"}, "a failure opens nothing");
    }
}

}  // namespace
}  // namespace veltrix::test

// The first byte chooses the command and whether things open; the rest is what the script printed.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace veltrix;
    if (size == 0) {
        return 0;
    }
    const std::string_view word = test::kWords[data[0] % test::kWords.size()];
    const bool opens = data[0] < 0x80;
    const Reply reply =
        parseJsonObject(test::asText(data + 1, size - 1)).value_or(incompleteReply());

    test::VirtualDispatcher dispatcher;
    test::RecordingShell shell;
    shell.onOpenFolder = shell.onOpenPage = [opens] { return opens; };
    const std::shared_ptr<Operator> subject =
        Operator::make(shell, {dispatcher, [] { return std::string("/resources"); },
                               [] { return std::vector<std::string>(); },
                               [&reply](const ActionJob&, const std::vector<std::string>&,
                                        Dispatcher&) { return reply; }});
    subject->perform(word);
    test::require(subject->busy(), "busy while the script runs");
    static_cast<void>(shell.takeCalls());
    dispatcher.settle();
    test::require(!subject->busy(), "idle once it has ended");
    test::check(shell.takeCalls(), reply, word, opens);
    return 0;
}
