#include "model/World.h"

#include "model/SetupWorld.h"

#include <array>

namespace veltrix::test {
namespace {

constexpr int kSteps = 30;
constexpr int kStepsInASession = 40;
constexpr int kMostQuestionsUp = 3;

// The setup window's word stands here more than once: a session takes many steps to lead anywhere.
constexpr std::array<std::string_view, 19> kWords{
    "status",        "save",     "setup",  "setup", "setup",  "start",      "stop",     "install",
    "configuration", "upgrade",  "repair", "check", "shares", "recordings", "overview", "",
    "Status",        "no\nword", "inspect"};

struct Home {
    const char* path;
    bool valid;
};
constexpr std::array<Home, 4> kHomes{
    {{"/Users/sam/DVR", true}, {"~/DVR", true}, {"DVR", false}, {"/a\"b", false}}};

}  // namespace

class World::Shell final : public OperatorShell {
  public:
    explicit Shell(World& world) : world_(world) {}

    [[nodiscard]] FieldTexts fields() const override { return texts; }
    void setNode(std::string_view path) override {
        texts.node = path;
        saw("node: " + texts.node);
    }
    [[nodiscard]] bool save() override {
        saw("save");
        const bool accepted = !world_.choices_.oneIn(4);
        world_.story_.tell(accepted ? "saved" : "refused to save");
        world_.model_.saved(accepted);
        return accepted;
    }
    void setControlsEnabled(bool enabled) override {
        controlsEnabled = enabled;
        saw(enabled ? "controls on" : "controls off");
    }
    void setMenuActionsEnabled(bool enabled) override {
        menuActionsEnabled = enabled;
        saw(enabled ? "menu actions on" : "menu actions off");
    }
    void setStatus(std::string_view sentence) override {
        status = sentence;
        ++tally.sentences;
        saw("status: " + status);
    }
    void mirrorStatusInToolTip() override {
        toolTip = status;
        ++tally.toolTips;
        saw("tool tip: " + toolTip);
    }
    void bringForward() override { saw("bring forward"); }
    [[nodiscard]] bool confirm(const Confirmation& confirmation) override {
        saw("confirm: " + std::string(confirmation.message));
        const bool yes = world_.answerQuestion();
        world_.model_.answered(yes);
        return yes;
    }
    [[nodiscard]] bool openFolder(const std::string& path) override {
        return opened("open folder: " + path);
    }
    [[nodiscard]] bool openPage(const std::string& url) override {
        return opened("open page: " + url);
    }
    void runSetupSession(const std::string&, const std::string&) override {
        saw("setup session");
        world_.useSetupWindow();
        world_.model_.sessionEnds();
    }

    FieldTexts texts{kHomes[0].path, "/usr/bin/node", "/data", "https://dvr.home", "30"};
    bool controlsEnabled = true;
    bool menuActionsEnabled = true;
    std::string status;
    std::string toolTip;

    struct Tally {
        int sentences = 0;
        int toolTips = 0;
        int openings = 0;
        int failedOpenings = 0;
    };
    Tally tally;

  private:
    void saw(const std::string& effect) {
        world_.story_.tell("  " + effect);
        world_.model_.saw(effect);
    }
    bool opened(const std::string& effect) {
        saw(effect);
        const bool succeeded = !world_.choices_.oneIn(3);
        ++tally.openings;
        tally.failedOpenings += succeeded ? 0 : 1;
        world_.story_.tell(succeeded ? "opened" : "not opened");
        world_.model_.opened(succeeded);
        return succeeded;
    }

    World& world_;
};

World::World(Choices& choices, const ResourceFixture& bundle)
    : choices_(choices), bundle_(bundle), model_(story_), shell_(std::make_unique<Shell>(*this)),
      operator_(Operator::make(*shell_, services())) {}

World::~World() = default;

OperatorServices World::services() {
    return {dispatcher_,
            [this] { return bundleComplete_ ? bundle_.folder() : bundle_.folder() + "/none"; },
            [] { return std::vector<std::string>(); },
            [this](const ActionJob&, const std::vector<std::string>&, Dispatcher&) {
                return runScript();
            }};
}

std::optional<std::string> World::play() {
    compare();
    for (int count = 0; count < kSteps && !story_.wentWrong(); ++count) {
        step();
    }
    if (!story_.wentWrong()) {
        runWorkers();
        runMain();
        story_.expect(!operator_->busy(), "still busy with nothing left to do");
    }
    return story_.ifWrong();
}

void World::step() {
    switch (choices_.below(8)) {
    case 0:
        runWorkers();
        break;
    case 1:
        runMain();
        break;
    case 2:
        bundleComplete_ = !bundleComplete_;
        story_.tell(bundleComplete_ ? "bundle complete" : "bundle incomplete");
        break;
    case 3:
        shell_->texts.home = choices_.from(kHomes).path;
        story_.tell("type " + shell_->texts.home);
        break;
    case 4:
        quit();
        break;
    default:
        choose();
    }
    compare();
}

void World::choose() {
    const std::string word(choices_.from(kWords));
    bool homeValid = false;
    for (const Home& home : kHomes) {
        homeValid = homeValid || (home.valid && shell_->texts.home == home.path);
    }
    story_.tell("choose \"" + word + "\"");
    const bool wasBusy = operator_->busy();
    const int sentences = shell_->tally.sentences;
    model_.chosen(word, homeValid && bundleComplete_);
    operator_->perform(word);
    model_.dealtWith();
    story_.expect(!wasBusy || shell_->tally.sentences == sentences,
                  "a dropped command says something");
}

void World::runWorkers() {
    story_.tell("workers run");
    dispatcher_.runWorkers();
}

// A reply is one sentence and its tool tip, and a follow-up that fails one sentence more.
void World::runMain() {
    story_.tell("main queue runs");
    if (!model_.hasReply()) {
        dispatcher_.runMain();
        return;
    }
    const Shell::Tally before = shell_->tally;
    model_.replyArrives();
    dispatcher_.runMain();
    model_.dealtWith();
    const Shell::Tally& after = shell_->tally;
    const int failures = after.failedOpenings - before.failedOpenings;
    const int openings = after.openings - before.openings;
    story_.expect(after.sentences == before.sentences + 1 + failures, "sentences of a reply");
    story_.expect(after.toolTips == before.toolTips + 1, "tool tips of a reply");
    story_.expect(shell_->toolTip == model_.reply().sentence, "tool tip is " + shell_->toolTip);
    story_.expect(openings <= (model_.reply().ok ? 1 : 0), "opens what it should not");
}

// Quitting is refused exactly while the operator is busy: otherwise nothing may be lost by it.
void World::quit() {
    if (operator_->busy()) {
        story_.tell("quit: refused");
        return;
    }
    story_.tell("quit");
    story_.expect(dispatcher_.onMain() + dispatcher_.onWorkers() == 0, "quits with work left");
}

Reply World::runScript() {
    ++scriptsRunning_;
    story_.expect(scriptsRunning_ == 1, "two scripts at once");
    model_.scriptStarts();
    const OperatorReply made = anyOperatorReply(choices_);
    story_.tell("script ends: " + writeJson(Json(made.reply)).value());
    model_.scriptEnds(made);
    --scriptsRunning_;
    return made.reply;
}

bool World::answerQuestion() {
    ++questionsUp_;
    {
        const Story::Inside inside(story_);
        while (questionsUp_ <= kMostQuestionsUp && choices_.oneIn(2) && !story_.wentWrong()) {
            step();
        }
    }
    --questionsUp_;
    const bool yes = !choices_.oneIn(3);
    story_.tell(yes ? "yes" : "no");
    return yes;
}

void World::useSetupWindow() {
    const Story::Inside inside(story_);
    SetupWorld setup(choices_, story_, dispatcher_);
    for (int count = 0; !setup.ended() && !story_.wentWrong(); ++count) {
        if (count >= kStepsInASession) {
            dispatcher_.settle();
            setup.wantClosed();
            dispatcher_.settle();
        } else if (choices_.below(3) == 0) {
            step();
        } else {
            setup.act();
        }
        compare();
        setup.compare();
    }
    story_.expect(dispatcher_.onMain() + dispatcher_.onWorkers() == 0, "ends with work left");
}

void World::compare() {
    story_.expect(operator_->busy() == model_.busy(), "busy for no reason, or not");
    story_.expect(shell_->controlsEnabled == model_.controlsEnabled(), "the controls");
    story_.expect(shell_->menuActionsEnabled == model_.menuActionsEnabled(), "the menu actions");
}

}  // namespace veltrix::test
