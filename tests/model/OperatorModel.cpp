#include "model/OperatorModel.h"

#include <map>
#include <utility>

namespace veltrix::test {
namespace {

const std::map<std::string, std::string, std::less<>> kQuestions{
    {"install", "confirm: Install DVR for this account?"},
    {"start", "confirm: Start DVR?"},
    {"stop", "confirm: Stop DVR?"},
    {"upgrade", "confirm: Update DVR?"},
    {"repair", "confirm: Repair Interrupted Update?"},
};

}  // namespace

void OperatorModel::chosen(const std::string& word, bool usable) {
    frames_.push_back({Doing::command, word, {}, {}});
    if (busy()) {
        return;
    }
    if (word != "upgrade" && word != "repair") {
        expect({"save"});
    } else if (usable) {
        expect({kQuestions.at(word)});
    } else {
        expect({"status: Open the complete bundle to update or repair this installation.",
                "bring forward"});
    }
}

void OperatorModel::scriptStarts() {
    story_.expect(job_ == Job::submitted, "a script runs that nobody has asked for");
    job_ = Job::running;
}

void OperatorModel::scriptEnds(OperatorReply reply) {
    job_ = Job::replied;
    reply_ = std::move(reply);
}

void OperatorModel::replyArrives() {
    job_ = Job::none;
    frames_.push_back({Doing::reply, jobWord_, {}, {}});
    expect({"controls on", "menu actions on", "status: " + reply_.sentence,
            "tool tip: " + reply_.sentence});
    if (!reply_.ok) {
        expect({"bring forward"});
    } else if ((jobWord_ == "install" || jobWord_ == "upgrade") && reply_.node) {
        expect({"node: " + *reply_.node, "save"});
    } else {
        followUps();
    }
}

void OperatorModel::dealtWith() {
    const std::deque<std::string>& missing = frames_.back().next;
    story_.expect(missing.empty(), missing.empty() ? "" : "never happened: " + missing.front());
    frames_.pop_back();
}

void OperatorModel::saved(bool accepted) {
    if (frames_.back().doing == Doing::reply) {
        followUps();
    } else if (accepted) {
        afterSaving();
    }
}

void OperatorModel::answered(bool yes) {
    // Meanwhile another command may have got under way; nothing runs twice at once.
    if (yes && !busy()) {
        startJob();
    }
}

void OperatorModel::sessionEnds() {
    inSession_ = false;
    expect({"menu actions on"});
}

void OperatorModel::opened(bool succeeded) {
    if (!succeeded) {
        expect({"status: " + frames_.back().onFailure, "bring forward"});
    }
}

void OperatorModel::saw(const std::string& effect) {
    if (frames_.empty() || frames_.back().next.empty()) {
        story_.complain("nothing more was to happen, but: " + effect);
        return;
    }
    std::deque<std::string>& next = frames_.back().next;
    story_.expect(next.front() == effect, "expected " + next.front() + ", but: " + effect);
    next.pop_front();
}

void OperatorModel::expect(std::initializer_list<std::string> effects) {
    std::deque<std::string>& next = frames_.back().next;
    next.insert(next.end(), effects);
}

void OperatorModel::afterSaving() {
    const std::string& word = frames_.back().word;
    if (word == "setup") {
        inSession_ = true;
        expect({"menu actions off", "setup session"});
    } else if (word == "save") {
        expect({"status: Desktop settings saved. Service unchanged."});
    } else if (const auto question = kQuestions.find(word); question != kQuestions.end()) {
        expect({question->second});
    } else {
        startJob();
    }
}

void OperatorModel::startJob() {
    job_ = Job::submitted;
    jobWord_ = frames_.back().word;
    expect({"controls off", "menu actions off", "status: Working..."});
}

void OperatorModel::followUps() {
    if (jobWord_ == "configuration" && reply_.configurationPath) {
        frames_.back().onFailure = "Could not open the configuration folder.";
        expect({"open folder: " + *reply_.configurationPath});
    } else if (reply_.url) {
        frames_.back().onFailure = "Could not open the configured browser.";
        expect({"open page: " + *reply_.url});
    }
}

}  // namespace veltrix::test
