// The setup window's content, top to bottom. Main thread only.
#pragma once

#include "common/RetainPtr.h"

#import <AppKit/AppKit.h>

#include <string>
#include <string_view>
#include <vector>

namespace veltrix {

inline constexpr std::string_view kTrustCATitle = "I trust the selected local CA";
inline constexpr std::string_view kTrustProxyTitle =
    "Allow this computer's TLS gateway on loopback";

// Owned by the setup window; the form only arranges them.
struct SetupFields {
    NSTextField* certificate;
    NSTextField* key;
    NSTextField* ca;
    NSTextField* username;
    NSSecureTextField* password;
    NSButton* trustCA;
    NSButton* trustProxy;
    NSTextField* status;
};

struct SetupFormLayout {
    RetainPtr<NSWindow> window;
    std::vector<RetainPtr<NSControl>> controls;  // all that is locked while a request runs
};

// A check box, off, that tells nobody when it changes.
[[nodiscard]] NSButton* makeCheckBox(std::string_view title);

// `target` answers to choose:, manage and performSetupAction:. The window is centred, not shown.
[[nodiscard]] SetupFormLayout makeSetupWindow(const SetupFields& fields, const std::string& origin,
                                              id target);

}  // namespace veltrix
