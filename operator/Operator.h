// Carries out command words, one at a time, and says what came of each. Owned by the application,
// for the life of the process; main thread only. A running action holds a reference of its own.
#pragma once

#include "common/Dispatch.h"
#include "common/Json.h"
#include "operator/ActionJob.h"
#include "operator/Commands.h"
#include "operator/OperatorShell.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace veltrix {

// What the operator needs of the world besides its shell. The functions are asked anew for every
// command; `environment` and `run` on a worker thread, the other on the main thread.
struct OperatorServices {
    Dispatcher& dispatcher;
    std::function<std::string()> resourceFolder;
    std::function<std::vector<std::string>()> environment;
    std::function<Reply(const ActionJob&, std::vector<std::string>, Dispatcher&)> run =
        runActionJob;
};

class Operator final : public std::enable_shared_from_this<Operator> {
  public:
    // The shell outlives every action: it is the application itself.
    [[nodiscard]] static std::shared_ptr<Operator> make(OperatorShell& shell,
                                                        OperatorServices services);

    // Carries out one command word. Every outcome shows in the shell alone; a word that comes
    // while `busy` is dropped without a trace.
    void perform(std::string_view received);

    // True while an action or the setup session is under way.
    [[nodiscard]] bool busy() const { return busy_; }

  private:
    Operator(OperatorShell& shell, OperatorServices services);

    // perform, step by step
    [[nodiscard]] bool meets(Precondition precondition, const std::string& runtime);
    [[nodiscard]] bool agreedTo(const CommandRule& rule);
    void runSetupSession();
    [[nodiscard]] ActionJob makeJob(const CommandRule& rule, const std::string& command,
                                    const std::string& resources) const;
    void submit(ActionJob job, std::string command);

    // The outcome handler and its follow-ups
    void handle(const Reply& reply, const std::string& command);
    void adoptRuntime(const Reply& reply);
    [[nodiscard]] bool openConfiguration(const Reply& reply);
    void openBrowserPage(const Reply& reply);
    void refuse(std::string_view sentence);

    OperatorShell& shell_;
    OperatorServices services_;
    bool busy_ = false;
};

}  // namespace veltrix
