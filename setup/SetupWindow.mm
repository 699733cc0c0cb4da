#import "setup/SetupWindow.h"

#include "common/Fatal.h"
#include "common/Form.h"
#include "common/PathChooser.h"
#include "common/StatusLine.h"
#include "common/Text.h"
#include "setup/PublicOrigin.h"
#include "setup/SetupForm.h"
#include "setup/SetupOutcomes.h"
#include "setup/SetupSession.h"

namespace veltrix {
namespace {

// The account service's own page.
constexpr std::string_view kManagementPage = "https://account.veltrix.example/manage";

// A modal session looks whether it was stopped only after an event, and a completion is none
// (NSApplication's stopModal says so): give it one.
void wakeEventLoop() {
    [NSApp postEvent:[NSEvent otherEventWithType:NSEventTypeApplicationDefined
                                        location:NSZeroPoint
                                   modifierFlags:0
                                       timestamp:0
                                    windowNumber:0
                                         context:nil
                                         subtype:0
                                           data1:0
                                           data2:0]
             atStart:NO];
}

bool isOn(NSButton* checkBox) {
    return [checkBox state] == NSControlStateValueOn;
}

}  // namespace

// The session's view of the window. Owned by the window, so it does not retain it.
class SetupWindowView final : public SetupView {
  public:
    explicit SetupWindowView(SetupWindow* window) : window_(window) {}

    [[nodiscard]] std::shared_ptr<void> hold() override {
        return std::make_shared<RetainPtr<SetupWindow>>(window_);
    }

    [[nodiscard]] SetupForm form() const override {
        return {typedText([window_ certificate]), typedText([window_ key]),
                typedText([window_ ca]),          typedText([window_ username]),
                typedText([window_ password]),    isOn([window_ trustCA]),
                isOn([window_ trustProxy])};
    }

    void clearPassword() override { [[window_ password] setStringValue:@""]; }

    void setControlsEnabled(bool enabled) override {
        for (const RetainPtr<NSControl>& control : [window_ controls]) {
            [control setEnabled:enabled];
        }
    }

    void setStatus(std::string_view sentence) override { tell([window_ status], sentence); }

    void endSession() override {
        if (NSApp == nil) {
            fatalProgrammingError("a setup session without an application");
        }
        [NSApp stopModal];
        wakeEventLoop();
        [[window_ window] close];
    }

  private:
    SetupWindow* window_;
};

}  // namespace veltrix

using namespace veltrix;

@implementation SetupWindow

- (instancetype)init {
    fatalProgrammingError("a setup window needs a runtime and an installation");
}

- (instancetype)initWithExecutable:(const std::string&)executable
                              home:(const std::string&)home
                          services:(SetupServices)services {
    self = [super init];
    if (self == nil) {
        return nil;
    }
    _certificate = adoptNS([[NSTextField alloc] init]);
    _key = adoptNS([[NSTextField alloc] init]);
    _ca = adoptNS([[NSTextField alloc] init]);
    _username = adoptNS([[NSTextField alloc] init]);
    _password = adoptNS([[NSSecureTextField alloc] init]);
    _trustCA = makeCheckBox(kTrustCATitle);
    _trustProxy = makeCheckBox(kTrustProxyTitle);
    _status = makeStatusLine(kSetupStatusAtOpening);
    _view = std::make_unique<SetupWindowView>(self);
    _session = SetupSession::make(*_view, SetupIPC::make(executable, home, std::move(services)),
                                  publicOrigin(home));
    SetupFormLayout built =
        makeSetupWindow({_certificate.get(), _key.get(), _ca.get(), _username.get(),
                         _password.get(), _trustCA.get(), _trustProxy.get(), _status.get()},
                        _session->origin(), self);
    _window = std::move(built.window);
    _controls = std::move(built.controls);
    [_window setDelegate:self];
    return self;
}

// Somebody may still hold the window, and it does not retain its delegate.
- (void)dealloc {
    [_window setDelegate:nil];
    [super dealloc];
}

- (void)choose:(NSButton*)button {
    const auto path = choosePath(Choosable::files);
    if (!path) {
        return;
    }
    NSString* const identifier = [button identifier];
    NSTextField* const target = [identifier isEqualToString:@"key"]  ? _key.get()
                                : [identifier isEqualToString:@"ca"] ? _ca.get()
                                                                     : _certificate.get();
    [target setStringValue:toNSString(*path)];
}

- (void)manage {
    NSURL* const page = [NSURL URLWithString:toNSString(kManagementPage)];
    if (page == nil) {
        fatalProgrammingError("the account management page is no URL");
    }
    [[NSWorkspace sharedWorkspace] openURL:page];
}

- (void)performSetupAction:(NSButton*)button {
    if ([button identifier] != nil) {
        _session->performSetupAction(toUtf8([button identifier]));
    }
}

- (BOOL)windowShouldClose:(NSWindow*)window {
    return _session->windowShouldClose();
}

- (NSWindow*)window {
    return _window;
}

- (NSTextField*)certificate {
    return _certificate;
}

- (NSTextField*)key {
    return _key;
}

- (NSTextField*)ca {
    return _ca;
}

- (NSTextField*)username {
    return _username;
}

- (NSSecureTextField*)password {
    return _password;
}

- (NSButton*)trustCA {
    return _trustCA;
}

- (NSButton*)trustProxy {
    return _trustProxy;
}

- (NSTextField*)status {
    return _status;
}

- (const std::vector<RetainPtr<NSControl>>&)controls {
    return _controls;
}

@end
