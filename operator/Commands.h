// What each command word means to the operator: one table, looked up by exact comparison. A word
// that is not in it (the empty one included) takes kOtherWord. Constants; any thread.
#pragma once

#include "operator/Confirmations.h"

#include <optional>
#include <span>
#include <string_view>

namespace veltrix {

// What must hold before a command is carried out.
enum class Precondition {
    savedSettings,   // the fields are valid and have just been stored
    completeBundle,  // the installation folder is a valid path and the bundle brings a runtime
};

// What a command comes to once its precondition holds and its question is answered.
enum class Effect {
    runService,     // service script, word, "--home", installation
    runController,  // controller script, word, "--home", installation
    runInstall,     // install script, and the form on its standard input
    runUpdate,      // update script under the bundle's own runtime
    openSetup,      // the modal setup session
    confirmSaved,   // nothing but a sentence
};

struct CommandRule {
    std::string_view word;
    Precondition precondition;
    std::optional<Question> question;
    Effect effect;
    std::string_view scriptWord;  // what the script is told; empty: the word as received
};

[[nodiscard]] std::span<const CommandRule> commandRules();

// The word's row, or the row of every other word.
[[nodiscard]] const CommandRule& commandRule(std::string_view word);

// Bundle resources, relative to the resource folder.
inline constexpr const char* kServiceScript = "desktop/service.mjs";
inline constexpr const char* kControllerScript = "desktop/controller.mjs";
inline constexpr const char* kInstallScript = "desktop/install.mjs";
inline constexpr const char* kUpdateScript = "desktop/update.mjs";

}  // namespace veltrix
