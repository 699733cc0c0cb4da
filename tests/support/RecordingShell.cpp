#include "support/RecordingShell.h"

#include <gtest/gtest.h>

#include <utility>

namespace veltrix::test {
namespace {

std::string onOff(bool enabled) {
    return enabled ? "on" : "off";
}

}  // namespace

std::vector<std::string> RecordingShell::takeCalls() {
    return std::exchange(calls, {});
}

void RecordingShell::checkThread() const {
    EXPECT_EQ(std::this_thread::get_id(), thread_) << "the shell was touched off its thread";
}

void RecordingShell::note(std::string call) {
    checkThread();
    calls.push_back(std::move(call));
}

FieldTexts RecordingShell::fields() const {
    checkThread();
    return texts;
}

void RecordingShell::setNode(std::string_view path) {
    texts.node = path;
    note("node: " + texts.node);
}

bool RecordingShell::save() {
    note("save");
    return onSave();
}

void RecordingShell::setControlsEnabled(bool enabled) {
    note("controls " + onOff(enabled));
}

void RecordingShell::setMenuActionsEnabled(bool enabled) {
    note("menu actions " + onOff(enabled));
}

void RecordingShell::setStatus(std::string_view sentence) {
    status_ = sentence;
    note("status: " + status_);
}

void RecordingShell::mirrorStatusInToolTip() {
    note("tool tip: " + status_);
}

void RecordingShell::bringForward() {
    note("bring forward");
}

bool RecordingShell::confirm(const Confirmation& confirmation) {
    note("confirm: " + std::string(confirmation.message));
    return onConfirm(confirmation);
}

bool RecordingShell::openFolder(const std::string& path) {
    note("open folder: " + path);
    return onOpenFolder();
}

bool RecordingShell::openPage(const std::string& url) {
    note("open page: " + url);
    return onOpenPage();
}

void RecordingShell::runSetupSession(const std::string& executable, const std::string& home) {
    note("setup session: " + executable + ", " + home);
    onSetupSession();
}

}  // namespace veltrix::test
