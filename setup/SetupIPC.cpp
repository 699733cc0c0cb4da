#include "setup/SetupIPC.h"

#include "common/Environment.h"
#include "common/ResourceFolder.h"
#include "setup/SetupActions.h"
#include "setup/SetupOutcomes.h"

#include <utility>

namespace veltrix {
namespace {

constexpr char kLineFeed = '\n';

}  // namespace

Reply setupFailureReply() {
    return Reply{{"ok", Json(false)}, {"code", Json(std::string(kSetupFailed))}};
}

std::shared_ptr<SetupIPC> SetupIPC::make(std::string executable, std::string home,
                                         SetupServices services) {
    return std::shared_ptr<SetupIPC>(
        new SetupIPC(std::move(executable), std::move(home), std::move(services)));
}

SetupIPC::SetupIPC(std::string executable, std::string home, SetupServices services)
    : executable_(std::move(executable)), home_(std::move(home)), services_(std::move(services)),
      queue_(services_.dispatcher.makeSerialQueue(kSetupQueueLabel)) {}

void SetupIPC::request(std::string action, Json::Object values,
                       std::function<void(const Reply&)> completion) {
    queue_->async([self = shared_from_this(), action = std::move(action),
                   values = std::move(values), completion = std::move(completion)]() mutable {
        Reply reply = self->answer(action, std::move(values));
        // The completion moves along: what it holds belongs to the main thread, its end included.
        self->services_.dispatcher.asyncOnMain(
            [completion = std::move(completion), reply = std::move(reply)] { completion(reply); });
    });
}

void SetupIPC::close(std::function<void()> completion) {
    queue_->async([self = shared_from_this(), completion = std::move(completion)]() mutable {
        self->shutDown();
        self->services_.dispatcher.asyncOnMain(std::move(completion));
    });
}

Reply SetupIPC::answer(const std::string& action, Json::Object values) {
    if (!ensureProcess()) {
        return setupFailureReply();
    }
    const std::shared_ptr<DelayedWork> deadline =
        armDeadline(action == kConfigurePassword ? kPasswordRequestLimit : kRequestLimit);
    std::optional<Reply> reply = exchange(action, std::move(values));
    deadline->cancel();
    return reply ? std::move(*reply) : setupFailureReply();
}

bool SetupIPC::ensureProcess() {
    if (process_ && process_->isRunning()) {
        return true;
    }
    const ChildCommand command{
        executable_,
        {resourcePath(services_.resourceFolder(), kFirstRunScript), "--home", home_},
        filterEnvironment(services_.environment(), kSetupEnvironment)};
    std::optional<Pipe> input = makePipe();
    std::optional<Pipe> output = makePipe();
    input_ = input ? std::move(*input) : Pipe();
    output_ = output ? std::move(*output) : Pipe();
    if (!input || !output) {
        return false;
    }
    std::shared_ptr<ChildProcess> launched =
        ChildProcess::launch(command, input_.readEnd.get(), output_.writeEnd.get());
    // The child's ends are the child's alone, or neither end of file nor a failed write would
    // ever be seen.
    input_.readEnd.reset();
    output_.writeEnd.reset();
    if (!launched) {
        return false;
    }
    process_ = std::move(launched);
    return true;
}

std::shared_ptr<DelayedWork> SetupIPC::armDeadline(std::chrono::milliseconds limit) {
    return services_.dispatcher.afterOnGlobal(limit, [child = process_] { child->terminate(); });
}

std::optional<Reply> SetupIPC::exchange(const std::string& action, Json::Object values) {
    std::optional<std::string> line = writeJson(Json(Json::Object{
        {"action", Json(action)},
        {"values", Json(std::move(values))},
    }));
    if (!line) {
        return std::nullopt;
    }
    line->push_back(kLineFeed);
    return writeAll(input_.writeEnd.get(), *line) ? readReply() : std::nullopt;
}

// Nothing behind the line feed is ever taken from a pipe that outlives this request. The rest of an
// overlong line stays there and begins the next reply.
std::optional<Reply> SetupIPC::readReply() {
    const std::string line = readLine(output_.readEnd.get(), kReplyLineLimit + 1);
    return line.size() <= kReplyLineLimit ? parseJsonObject(line) : std::nullopt;
}

void SetupIPC::shutDown() {
    input_.writeEnd.reset();
    if (process_) {
        const std::shared_ptr<DelayedWork> deadline = armDeadline(kCloseLimit);
        process_->waitUntilExit();
        deadline->cancel();
    }
    process_.reset();
    input_ = Pipe();
    output_ = Pipe();
}

}  // namespace veltrix
