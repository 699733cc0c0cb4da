#include "shell/SetupWindowTest.h"

#include "common/Text.h"
#include "support/AppKitDriver.h"

#include <filesystem>
#include <fstream>
#include <sstream>

namespace veltrix::test {

SetupWindowTest::SetupWindowTest() {
    firstRunReplies(R"({"ok":true,"code":"tls_configured_stopped"})");
}

SetupWindowTest::~SetupWindowTest() {
    [[opened_ window] orderOut:nil];
}

void SetupWindowTest::open() {
    const OperatorServices services = environment().services;
    opened_ = adoptNS([[SetupWindow alloc]
        initWithExecutable:resources.node()
                      home:installation()
                  services:{services.dispatcher, services.resourceFolder, services.environment}]);
    [[opened_ window] makeKeyAndOrderFront:nil];
}

void SetupWindowTest::firstRunDoes(std::string_view steps) const {
    resources.script("desktop/first-run.mjs", "log-input " + log + "\n" + std::string(steps));
}

void SetupWindowTest::firstRunReplies(std::string_view json) const {
    firstRunDoes("answer-all " + std::string(json) + "\\n\n");
}

std::vector<Json::Object> SetupWindowTest::requests() const {
    std::vector<Json::Object> found;
    std::istringstream lines(contentsOf(log));
    for (std::string line; std::getline(lines, line);) {
        found.push_back(parseJsonObject(line).value_or(Json::Object()));
    }
    return found;
}

std::string SetupWindowTest::actionOf(const Json::Object& request) {
    const std::string* const action = stringMember(request, "action");
    return action == nullptr ? "" : *action;
}

Json::Object SetupWindowTest::valuesOf(const Json::Object& request) {
    const auto values = request.find("values");
    return values == request.end() || values->second.object() == nullptr ? Json::Object()
                                                                         : *values->second.object();
}

void SetupWindowTest::writeSettings(std::string_view contents) const {
    std::filesystem::create_directories(installation() + "/config");
    std::ofstream(installation() + "/config/settings.json") << contents;
}

SetupWindow* SetupWindowTest::setup() const {
    return opened_ ? opened_.get() : dynamicCast<SetupWindow>((id)[[NSApp modalWindow] delegate]);
}

bool SetupWindowTest::controlsEnabled() const {
    for (const auto& control : [setup() controls]) {
        if (![control isEnabled]) {
            return false;
        }
    }
    return true;
}

bool SetupWindowTest::anyControlEnabled() const {
    for (const auto& control : [setup() controls]) {
        if ([control isEnabled]) {
            return true;
        }
    }
    return false;
}

void SetupWindowTest::pressToEnd(NSString* title) {
    ASSERT_TRUE(pressButtonTitled(panel(), title));
    ASSERT_TRUE(pumpUntil([this] { return controlsEnabled(); })) << toUtf8(title);
}

void SetupWindowTest::whenShown() {
    script.when("the setup window", [this] { return setup() != nil && [panel() isVisible]; });
}

void SetupWindowTest::pressWhenShown(NSString* title) {
    whenShown();
    script.then([this, title] { EXPECT_TRUE(pressButtonTitled(panel(), title)) << toUtf8(title); });
}

void SetupWindowTest::whenSaid(const std::string& sentence) {
    script.when("\"" + sentence + "\"", [this, sentence] { return said() == sentence; });
}

void SetupWindowTest::closeAtTheEnd() {
    script.then([this] { pressCloseButton(panel()); });
}

void SetupWindowTest::runSession() {
    @autoreleasepool {
        [app perform:"setup"];
    }
    EXPECT_TRUE(script.finished());
}

}  // namespace veltrix::test
