// A setup session between a recorder of view calls and a script of replies. Both write into one
// journal, in order, and each entry says what the session's flags were at that moment:
//
//     busy: controls off
//     busy: status: Working...
//     busy: request enrollment.poll {}
//
// Main thread only; nothing here waits.
#pragma once

#include "setup/SetupActions.h"
#include "setup/SetupChannel.h"
#include "setup/SetupSession.h"
#include "setup/SetupView.h"

#include <gtest/gtest.h>

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace veltrix::test {

class Journal {
  public:
    void watch(const std::shared_ptr<SetupSession>& session) { session_ = session; }

    void add(std::string_view what) { entries_.push_back(flags() + ": " + std::string(what)); }

    // What was written since the last call.
    [[nodiscard]] std::vector<std::string> take() { return std::exchange(entries_, {}); }

  private:
    [[nodiscard]] std::string flags() const {
        const std::shared_ptr<SetupSession> session = session_.lock();
        if (!session) {
            return "gone";
        }
        std::string text = session->closing() ? "closed" : session->busy() ? "busy" : "idle";
        return session->paired() ? text + ", paired" : text;
    }

    std::weak_ptr<SetupSession> session_;
    std::vector<std::string> entries_;
};

// Stands for the window: owns the session, as SetupWindow does, and can be held by it.
class RecordingView final : public SetupView, public std::enable_shared_from_this<RecordingView> {
  public:
    explicit RecordingView(Journal& journal) : journal_(journal) {}

    [[nodiscard]] std::shared_ptr<void> hold() override { return shared_from_this(); }
    [[nodiscard]] SetupForm form() const override { return typed; }
    void clearPassword() override {
        typed.password.clear();
        journal_.add("password cleared");
    }
    void setControlsEnabled(bool enabled) override {
        controlsEnabled = enabled;
        journal_.add(enabled ? "controls on" : "controls off");
    }
    void setStatus(std::string_view sentence) override {
        status = sentence;
        journal_.add("status: " + status);
    }
    void endSession() override { journal_.add("session ended"); }

    SetupForm typed;
    bool controlsEnabled = true;
    std::string status;
    std::shared_ptr<SetupSession> session;

  private:
    Journal& journal_;
};

// Stands for the first-run process: keeps what is asked until the test answers it, in order.
class ScriptedChannel final : public SetupChannel {
  public:
    explicit ScriptedChannel(Journal& journal) : journal_(journal) {}

    void request(std::string action, Json::Object values,
                 std::function<void(const Reply&)> completion) override {
        journal_.add("request " + action + " " + writeJson(Json(std::move(values))).value());
        requests_.push_back(std::move(completion));
    }
    void close(std::function<void()> completion) override {
        journal_.add("close");
        closings_.push_back(std::move(completion));
    }

    [[nodiscard]] bool hasRequest() const { return !requests_.empty(); }
    [[nodiscard]] bool hasClosing() const { return !closings_.empty(); }

    void answer(const Reply& reply) { takeFirst(requests_)(reply); }
    void finishClosing() { takeFirst(closings_)(); }

    // A completion holds the session, and the session this channel: what a test leaves unanswered
    // would keep all of them for ever.
    void forgetEverything() {
        const auto requests = std::exchange(requests_, {});
        const auto closings = std::exchange(closings_, {});
    }

  private:
    // Out of the queue before it is called, and gone right after: as the real channel does it.
    template <typename Completion>
    static Completion takeFirst(std::deque<Completion>& queue) {
        Completion first = std::move(queue.front());
        queue.pop_front();
        return first;
    }

    Journal& journal_;
    std::deque<std::function<void(const Reply&)>> requests_;
    std::deque<std::function<void()>> closings_;
};

class SetupSessionTest : public ::testing::Test {
  protected:
    using Entries = std::vector<std::string>;

    static constexpr const char* kOrigin = "https://dvr.example:8443";

    SetupSessionTest() {
        view->session = SetupSession::make(*view, channel, kOrigin);
        journal.watch(view->session);
    }
    ~SetupSessionTest() override { channel->forgetEverything(); }

    [[nodiscard]] SetupSession& session() const { return *view->session; }

    static Reply code(std::string_view value) { return Reply{{"code", Json(value)}}; }

    // One whole request, without a trace in the journal.
    void exchange(std::string_view action, const Reply& reply) {
        session().performSetupAction(action);
        channel->answer(reply);
        static_cast<void>(journal.take());
    }

    // A session with a confirmed approval and a form that is fit for setting the login.
    void prepareLogin() {
        exchange("enrollment.resume", code("enrollment_paired"));
        view->typed.trustProxy = true;
        view->typed.username = "owner";
        view->typed.password = "fifteen bytes!!";
    }

    Journal journal;
    std::shared_ptr<RecordingView> view = std::make_shared<RecordingView>(journal);
    std::shared_ptr<ScriptedChannel> channel = std::make_shared<ScriptedChannel>(journal);
};

}  // namespace veltrix::test
