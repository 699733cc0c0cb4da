// Where the command words appear: the status menu and the two button rows of the settings window,
// each in its order. The two surfaces differ on purpose. Constants; any thread.
#pragma once

#include <array>
#include <string_view>

namespace veltrix {

struct CommandItem {
    std::string_view title;
    std::string_view word;
};

struct CommandImageButton {
    std::string_view title;
    std::string_view word;
    std::string_view symbol;  // a system symbol's name
};

inline constexpr std::array<CommandItem, 9> kMenuCommands{{
    {"Dashboard", "overview"},
    {"Recordings", "recordings"},
    {"Shared Links", "shares"},
    {"Start DVR", "start"},
    {"Stop DVR...", "stop"},
    {"Check Configuration", "check"},
    {"Refresh Status", "status"},
    {"Update DVR...", "upgrade"},
    {"Repair Interrupted Update...", "repair"},
}};

// Below the commands and a separator. These two are never disabled.
inline constexpr std::string_view kSettingsItem = "Settings...";
inline constexpr std::string_view kQuitItem = "Quit Desktop App";

inline constexpr std::array<CommandImageButton, 5> kNavigationButtons{{
    {"Dashboard", "overview", "rectangle.grid.2x2"},
    {"Recordings", "recordings", "film"},
    {"Sharing", "shares", "person.2"},
    {"Start DVR", "start", "play.fill"},
    {"Stop DVR", "stop", "stop.fill"},
}};

inline constexpr std::array<CommandItem, 5> kActionButtons{{
    {"Install DVR", "install"},
    {"TLS / Account", "setup"},
    {"Save", "save"},
    {"Configuration Folder", "configuration"},
    {"Refresh Status", "status"},
}};

}  // namespace veltrix
