#include "operator/ActionJob.h"

#include "common/ChildProcess.h"
#include "common/Environment.h"
#include "common/Pipe.h"
#include "operator/Outcomes.h"

#include <memory>
#include <utility>

namespace veltrix {

namespace {

std::shared_ptr<ChildProcess> launch(const ActionJob& job, std::vector<std::string> environment,
                                     const Pipe& input, const Pipe& output) {
    const ChildCommand command{job.executable, job.arguments,
                               filterEnvironment(std::move(environment), kOperatorEnvironment)};
    return ChildProcess::launch(command, input.readEnd.get(), output.writeEnd.get());
}

}  // namespace

Reply incompleteReply() {
    return Reply{{"ok", Json(false)}, {"code", Json(std::string(kActionIncomplete))}};
}

Reply runActionJob(const ActionJob& job, std::vector<std::string> environment,
                   Dispatcher& dispatcher) {
    std::optional<Pipe> input = makePipe();
    std::optional<Pipe> output = makePipe();
    if (!input || !output) {
        return incompleteReply();
    }
    const std::shared_ptr<ChildProcess> child =
        launch(job, std::move(environment), *input, *output);
    // Our copies of the child's ends: held open, they would keep the end of output from arriving
    // and a write to a script that is gone from failing.
    input->readEnd.reset();
    output->writeEnd.reset();
    if (!child) {
        return incompleteReply();
    }
    if (job.input) {
        // A script that does not read its input still has its say.
        static_cast<void>(writeAll(input->writeEnd.get(), *job.input));
    }
    input->writeEnd.reset();

    const std::shared_ptr<DelayedWork> watchdog =
        dispatcher.afterOnGlobal(kActionLimit, [child] { child->terminate(); });
    const std::string text = drain(output->readEnd.get(), kReplyLimit + 1);
    output->readEnd.reset();
    // Read while the system takes apart what has said everything.
    std::optional<Reply> reply;
    if (text.size() <= kReplyLimit) {
        reply = parseJsonObject(text);
    }
    child->waitUntilExit();
    watchdog->cancel();
    return reply ? std::move(*reply) : incompleteReply();
}

}  // namespace veltrix
