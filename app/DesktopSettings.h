// The two things the companion remembers between runs, and the rules around them: how the form is
// first filled and what may be stored. Main thread only.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace veltrix {

// Where the two settings are kept: the user defaults, or a test's own.
class SettingsStore {
  public:
    virtual ~SettingsStore() = default;
    // Nothing when the key is absent or its value is not a string.
    [[nodiscard]] virtual std::optional<std::string> read(std::string_view key) const = 0;
    virtual void write(std::string_view key, std::string_view value) = 0;
    // What was written so far outlives the process from here on, however that ends.
    virtual void flush() = 0;
};

inline constexpr std::string_view kInstallationHomeKey = "installationHome";
inline constexpr std::string_view kNodeExecutableKey = "nodeExecutable";

// Under the user's home folder.
inline constexpr std::string_view kDefaultInstallation =
    "Library/Application Support/VeltrixHomeDVR";
inline constexpr std::string_view kDefaultNode = "/usr/local/bin/node";
inline constexpr std::string_view kDefaultRetentionDays = "30";

// Shown in the empty origin field, and typed into it by the self-test.
inline constexpr std::string_view kOriginPlaceholder = "https://dvr.example.home:8443";

inline constexpr std::string_view kSettingsRefused =
    "Choose an absolute installation folder and an executable Node 22+ runtime.";

// What the form shows when its window is built; the fields not named here are left alone.
struct InitialFields {
    std::string home;
    std::string node;
    std::string storage;
};

// `userHome` is the user's home folder, `bundledRuntime` the path of the bundle's own Node. A
// folder without an installation gets the bundle's runtime, whatever is stored; an installation
// keeps the runtime it was set up with.
[[nodiscard]] InitialFields loadFields(const SettingsStore& store, const std::string& userHome,
                                       const std::string& bundledRuntime);

// Stores both settings if both are valid: absolute paths by the rule of validPath, and Node an
// executable file. Otherwise stores neither and returns false. Node's version is not looked at.
// When it returns they are kept, together, whatever becomes of the process.
[[nodiscard]] bool storeSettings(SettingsStore& store, const std::string& home,
                                 const std::string& node);

}  // namespace veltrix
