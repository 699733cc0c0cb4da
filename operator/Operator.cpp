#include "operator/Operator.h"

#include "common/Files.h"
#include "common/ResourceFolder.h"
#include "common/ValidPath.h"
#include "operator/Outcomes.h"
#include "operator/PageUrl.h"

#include <utility>

namespace veltrix {
namespace {

// The form as the install script reads it: every text unchanged, numbers included.
std::optional<std::string> installPayload(const FieldTexts& fields) {
    return writeJson(Json(Json::Object{
        {"home", Json(fields.home)},
        {"storage", Json(fields.storage)},
        {"origin", Json(fields.origin)},
        {"retentionDays", Json(fields.retention)},
    }));
}

bool reportsRuntime(std::string_view command) {
    return command == "install" || command == "upgrade";
}

bool reportsConfiguration(std::string_view command) {
    return command == "configuration";
}

}  // namespace

std::shared_ptr<Operator> Operator::make(OperatorShell& shell, OperatorServices services) {
    return std::shared_ptr<Operator>(new Operator(shell, std::move(services)));
}

Operator::Operator(OperatorShell& shell, OperatorServices services)
    : shell_(shell), services_(std::move(services)) {}

void Operator::perform(std::string_view received) {
    if (busy_) {
        return;
    }
    const std::string command(received);
    const CommandRule& rule = commandRule(command);
    const std::string resources = services_.resourceFolder();
    if (!meets(rule.precondition, resourcePath(resources, kBundledRuntime)) || !agreedTo(rule)) {
        return;
    }
    switch (rule.effect) {
    case Effect::openSetup:
        runSetupSession();
        return;
    case Effect::confirmSaved:
        shell_.setStatus(kSettingsSaved);
        return;
    case Effect::runService:
    case Effect::runController:
    case Effect::runInstall:
    case Effect::runUpdate:
        submit(makeJob(rule, command, resources), command);
        return;
    }
}

// An update deliberately leaves the form alone: what is typed there is neither stored nor, but for
// the installation folder, looked at.
bool Operator::meets(Precondition precondition, const std::string& runtime) {
    if (precondition == Precondition::savedSettings) {
        return shell_.save();
    }
    if (!validPath(shell_.fields().home) || !isExecutableFile(runtime)) {
        refuse(kOpenCompleteBundle);
        return false;
    }
    return true;
}

// While the question is up nothing is busy yet, and the status menu still opens. If another
// command got under way meanwhile, this one is dropped like any other.
bool Operator::agreedTo(const CommandRule& rule) {
    return !rule.question || (shell_.confirm(confirmation(*rule.question)) && !busy_);
}

void Operator::runSetupSession() {
    const FieldTexts fields = shell_.fields();
    busy_ = true;
    shell_.setMenuActionsEnabled(false);
    shell_.runSetupSession(fields.node, fields.home);
    busy_ = false;
    shell_.setMenuActionsEnabled(true);
}

ActionJob Operator::makeJob(const CommandRule& rule, const std::string& command,
                            const std::string& resources) const {
    const FieldTexts fields = shell_.fields();
    const std::string word(rule.scriptWord.empty() ? command : rule.scriptWord);
    const auto scriptCall = [&](const char* script) {
        return std::vector<std::string>{resourcePath(resources, script), word, "--home",
                                        fields.home};
    };
    switch (rule.effect) {
    case Effect::runService:
        return {fields.node, scriptCall(kServiceScript), std::nullopt};
    case Effect::runInstall:
        return {fields.node, {resourcePath(resources, kInstallScript)}, installPayload(fields)};
    case Effect::runUpdate:
        return {resourcePath(resources, kBundledRuntime), scriptCall(kUpdateScript), std::nullopt};
    default:
        return {fields.node, scriptCall(kControllerScript), std::nullopt};
    }
}

void Operator::submit(ActionJob job, std::string command) {
    busy_ = true;
    shell_.setControlsEnabled(false);
    shell_.setMenuActionsEnabled(false);
    shell_.setStatus(kWorking);
    services_.dispatcher.asyncOnGlobal(
        QualityOfService::userInitiated,
        [self = shared_from_this(), job = std::move(job), command = std::move(command)]() mutable {
            Dispatcher& dispatcher = self->services_.dispatcher;
            Reply reply = self->services_.run(job, self->services_.environment(), dispatcher);
            // The reference moves along: the last one must be dropped on the main thread.
            dispatcher.asyncOnMain(
                [self = std::move(self), reply = std::move(reply), command = std::move(command)] {
                    self->handle(reply, command);
                });
        });
}

void Operator::handle(const Reply& reply, const std::string& command) {
    busy_ = false;
    shell_.setControlsEnabled(true);
    shell_.setMenuActionsEnabled(true);
    const std::string* code = stringMember(reply, "code");
    shell_.setStatus(
        operatorSentence(code != nullptr ? std::string_view(*code) : kActionIncomplete));
    // Here and nowhere else: what a follow-up says below never reaches the tool tip.
    shell_.mirrorStatusInToolTip();
    if (!isTrueMember(reply, "ok")) {
        shell_.bringForward();
        return;
    }
    if (reportsRuntime(command)) {
        adoptRuntime(reply);
    }
    if (reportsConfiguration(command) && openConfiguration(reply)) {
        return;
    }
    openBrowserPage(reply);
}

void Operator::adoptRuntime(const Reply& reply) {
    const std::string* node = stringMember(reply, "node");
    if (node != nullptr && validPath(*node)) {
        shell_.setNode(*node);
        static_cast<void>(shell_.save());  // a refusal speaks for itself
    }
}

// Whether the reply named a folder to open, opened or not.
bool Operator::openConfiguration(const Reply& reply) {
    const std::string* path = stringMember(reply, "configurationPath");
    if (path == nullptr || !validPath(*path)) {
        return false;
    }
    if (!shell_.openFolder(*path)) {
        refuse(kFolderNotOpened);
    }
    return true;
}

void Operator::openBrowserPage(const Reply& reply) {
    const std::string* url = stringMember(reply, "url");
    if (url != nullptr && isBrowserPage(*url) && !shell_.openPage(*url)) {
        refuse(kBrowserNotOpened);
    }
}

void Operator::refuse(std::string_view sentence) {
    shell_.setStatus(sentence);
    shell_.bringForward();
}

}  // namespace veltrix
