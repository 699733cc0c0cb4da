// The desktop settings in the user's standard defaults. Main thread only.
#pragma once

#include "app/DesktopSettings.h"

namespace veltrix {

class UserDefaultsStore final : public SettingsStore {
  public:
    [[nodiscard]] std::optional<std::string> read(std::string_view key) const override;
    void write(std::string_view key, std::string_view value) override;
    void flush() override;
};

}  // namespace veltrix
