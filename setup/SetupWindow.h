// The setup window: certificate, key and CA, two consents, the login and six buttons, run as an
// application-modal session. Owned by whoever runs the session; a request under way holds it too.
// Main thread only. What the buttons do is decided by its SetupSession.
#pragma once

#include "common/RetainPtr.h"
#include "setup/SetupIPC.h"

#import <AppKit/AppKit.h>

#include <memory>
#include <string>
#include <vector>

namespace veltrix {
class SetupSession;
class SetupWindowView;
}  // namespace veltrix

@interface SetupWindow : NSObject <NSWindowDelegate> {
    veltrix::RetainPtr<NSWindow> _window;
    veltrix::RetainPtr<NSTextField> _certificate;
    veltrix::RetainPtr<NSTextField> _key;
    veltrix::RetainPtr<NSTextField> _ca;
    veltrix::RetainPtr<NSTextField> _username;
    veltrix::RetainPtr<NSSecureTextField> _password;
    veltrix::RetainPtr<NSButton> _trustCA;
    veltrix::RetainPtr<NSButton> _trustProxy;
    veltrix::RetainPtr<NSTextField> _status;
    std::vector<veltrix::RetainPtr<NSControl>> _controls;
    std::unique_ptr<veltrix::SetupWindowView> _view;
    std::shared_ptr<veltrix::SetupSession> _session;
}

// Builds and centres the window but does not show it. `executable` is the Node runtime, `home` the
// installation folder; neither is checked here.
- (instancetype)initWithExecutable:(const std::string&)executable
                              home:(const std::string&)home
                          services:(veltrix::SetupServices)services;

// A programming error: stops the process.
- (instancetype)init;

- (NSWindow*)window;
- (NSTextField*)certificate;
- (NSTextField*)key;
- (NSTextField*)ca;
- (NSTextField*)username;
- (NSSecureTextField*)password;
- (NSButton*)trustCA;
- (NSButton*)trustProxy;
- (NSTextField*)status;
// Everything that is locked while a request runs. "Manage Account" is not among them.
- (const std::vector<veltrix::RetainPtr<NSControl>>&)controls;

- (void)choose:(NSButton*)button;
- (void)manage;
- (void)performSetupAction:(NSButton*)button;

@end
