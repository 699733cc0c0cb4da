// What an operator is expected to do, told independently of how it does it: a stack of things it
// is in the middle of (a command whose question is up can be interrupted by another one), and for
// each the effects that must come next, and none else. One thread.
#pragma once

#include "model/Replies.h"
#include "model/Story.h"

#include <deque>
#include <optional>
#include <string>
#include <vector>

namespace veltrix::test {

class OperatorModel {
  public:
    explicit OperatorModel(Story& story) : story_(story) {}

    // What is done to the operator. `usable`: whether an update could be run.
    void chosen(const std::string& word, bool usable);
    void scriptStarts();
    void scriptEnds(OperatorReply reply);
    void replyArrives();
    // The command or the reply has been dealt with: nothing may be left to come.
    void dealtWith();

    // How the shell answers what the operator has just asked of it.
    void saved(bool accepted);
    void answered(bool yes);
    void sessionEnds();
    void opened(bool succeeded);

    // What the operator does.
    void saw(const std::string& effect);

    [[nodiscard]] bool busy() const { return job_ != Job::none || inSession_; }
    [[nodiscard]] bool hasReply() const { return job_ == Job::replied; }
    [[nodiscard]] bool controlsEnabled() const { return job_ == Job::none; }
    [[nodiscard]] bool menuActionsEnabled() const { return !busy(); }
    [[nodiscard]] const OperatorReply& reply() const { return reply_; }

  private:
    enum class Job { none, submitted, running, replied };
    enum class Doing { command, reply };
    struct Frame {
        Doing doing;
        std::string word;
        std::deque<std::string> next;
        // What a follow-up says if what was just asked for fails.
        std::string onFailure;
    };

    void expect(std::initializer_list<std::string> effects);
    void afterSaving();
    void startJob();
    void followUps();

    Story& story_;
    std::vector<Frame> frames_;
    Job job_ = Job::none;
    std::string jobWord_;
    OperatorReply reply_;
    bool inSession_ = false;
};

}  // namespace veltrix::test
