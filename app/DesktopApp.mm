#import "app/DesktopApp.h"

#include "app/DesktopShell.h"
#include "app/MainMenu.h"
#include "app/SettingsWindow.h"
#include "app/ShellText.h"
#include "app/SingleInstance.h"
#include "app/SmokeTest.h"
#include "app/SmokeTestRun.h"
#include "app/StatusMenu.h"
#include "common/Dispatch.h"
#include "common/PathChooser.h"
#include "common/ResourceFolder.h"
#include "common/StatusLine.h"
#include "common/Text.h"
#include "operator/Operator.h"
#import "setup/SetupWindow.h"

using namespace veltrix;

@interface DesktopApp ()
- (bool)deferToRunningInstance;
- (void)makeStatusItem;
- (void)buildWindow;
- (void)startSmokeTest:(const std::string&)output;
@end

@implementation DesktopApp

- (instancetype)init {
    return [self initWithEnvironment:systemEnvironment()];
}

- (instancetype)initWithEnvironment:(DesktopEnvironment)environment {
    _home = adoptNS([[NSTextField alloc] init]);
    _node = adoptNS([[NSTextField alloc] init]);
    _storage = adoptNS([[NSTextField alloc] init]);
    _origin = adoptNS([[NSTextField alloc] init]);
    _retention = [NSTextField textFieldWithString:toNSString(kDefaultRetentionDays)];
    _status = makeStatusLine(kStatusAtLaunch);
    self = [super init];
    if (self != nil) {
        _environment = std::make_unique<DesktopEnvironment>(std::move(environment));
        _shell = std::make_unique<DesktopShell>(self);
        _operator = Operator::make(*_shell, _environment->services);
    }
    return self;
}

// --- Launch ---------------------------------------------------------------------------------

- (void)applicationDidFinishLaunching:(NSNotification*)notification {
    if ([self deferToRunningInstance]) {
        return;
    }
    [NSApp setActivationPolicy:NSApplicationActivationPolicyAccessory];
    installMainMenu();
    [self makeStatusItem];
    [self buildWindow];
    [self bringForward];
    if (const auto output = smokeTestOutput(_environment->arguments)) {
        [self startSmokeTest:*output];
    }
}

// True when another copy runs: it has been brought forward, and this one is about to leave.
- (bool)deferToRunningInstance {
    NSString* const identifier = [[NSBundle mainBundle] bundleIdentifier];
    if (identifier == nil) {
        return false;
    }
    NSArray* const running =
        [NSRunningApplication runningApplicationsWithBundleIdentifier:identifier];
    std::vector<pid_t> pids;
    for (NSRunningApplication* application in running) {
        pids.push_back([application processIdentifier]);
    }
    const auto other = otherInstance([[NSProcessInfo processInfo] processIdentifier], pids);
    if (!other) {
        return false;
    }
    NSRunningApplication* const first = [running objectAtIndex:*other];
    [first activateWithOptions:NSApplicationActivateIgnoringOtherApps];
    [NSApp terminate:nil];
    return true;
}

- (void)makeStatusItem {
    _statusItem = [[NSStatusBar systemStatusBar] statusItemWithLength:NSSquareStatusItemLength];
    NSString* const name = toNSString(kProductName);
    NSButton* const button = [_statusItem button];
    [button setImage:[NSImage imageWithSystemSymbolName:toNSString(kStatusItemSymbol)
                               accessibilityDescription:name]];
    [button setAccessibilityLabel:name];
    [button setToolTip:name];

    StatusMenu made = makeStatusMenu(self);
    _menuActions = std::move(made.commandItems);
    [_statusItem setMenu:made.menu];
}

- (void)buildWindow {
    const InitialFields initial =
        loadFields(*_environment->settings, _environment->userHome,
                   resourcePath(_environment->services.resourceFolder(), kBundledRuntime));
    [_home setStringValue:toNSString(initial.home)];
    [_node setStringValue:toNSString(initial.node)];
    [_storage setStringValue:toNSString(initial.storage)];
    [_origin setPlaceholderString:toNSString(kOriginPlaceholder)];

    SettingsWindow built = makeSettingsWindow(
        {_home.get(), _node.get(), _storage.get(), _origin.get(), _retention.get(), _status.get()},
        self);
    _window = std::move(built.window);
    _controls = std::move(built.controls);
}

- (void)startSmokeTest:(const std::string&)output {
    const SmokeTestFields fields;
    [_home setStringValue:toNSString(fields.home)];
    [_storage setStringValue:toNSString(fields.storage)];
    [_node setStringValue:toNSString(fields.node)];
    [_origin setStringValue:toNSString(fields.origin)];
    _environment->services.dispatcher.asyncOnMainAfter(
        kSmokeTestDelay,
        [app = RetainPtr<DesktopApp>(self), output] { runSmokeTest(app, output); });
}

// --- Commands -------------------------------------------------------------------------------

- (void)perform:(std::string_view)command {
    _operator->perform(command);
}

- (void)command:(NSMenuItem*)item {
    [self perform:toUtf8(dynamicCast<NSString>([item representedObject]))];
}

- (void)buttonCommand:(NSButton*)button {
    [self perform:toUtf8([button identifier])];
}

- (void)choose:(NSButton*)button {
    NSString* const identifier = [button identifier];
    NSString* const key = identifier != nil ? identifier : @"home";
    const bool isNode = [key isEqualToString:@"node"];
    const auto path = choosePath(isNode ? Choosable::files : Choosable::folders);
    if (!path) {
        return;
    }
    NSTextField* const target = [key isEqualToString:@"storage"] ? _storage.get()
                                : isNode                         ? _node.get()
                                                                 : _home.get();
    [target setStringValue:toNSString(*path)];
}

- (bool)save {
    const FieldTexts fields = _shell->fields();
    if (storeSettings(*_environment->settings, fields.home, fields.node)) {
        return true;
    }
    tell(_status, kSettingsRefused);
    [self bringForward];
    return false;
}

- (void)runSetupSessionWithExecutable:(const std::string&)executable home:(const std::string&)home {
    const OperatorServices& services = _environment->services;
    const RetainPtr<SetupWindow> setup = adoptNS([[SetupWindow alloc]
        initWithExecutable:executable
                      home:home
                  services:{services.dispatcher, services.resourceFolder, services.environment}]);
    [[setup window] makeKeyAndOrderFront:nil];
    [NSApp activateIgnoringOtherApps:YES];
    [NSApp runModalForWindow:[setup window]];
}

// --- Window and quitting --------------------------------------------------------------------

- (void)bringForward {
    [_window makeKeyAndOrderFront:nil];
    [NSApp activateIgnoringOtherApps:YES];
}

- (void)showSettings {
    [self bringForward];
}

// The person started the program again: with its window closed, nothing else would show.
- (BOOL)applicationShouldHandleReopen:(NSApplication*)application
                    hasVisibleWindows:(BOOL)hasVisibleWindows {
    [self showSettings];
    return NO;
}

// AppKit takes a bare argument for a document. There are none, and an alert about it would keep the
// launch from ending.
- (BOOL)application:(NSApplication*)application openFile:(NSString*)filename {
    return YES;
}

- (BOOL)applicationShouldTerminateAfterLastWindowClosed:(NSApplication*)application {
    return NO;
}

- (NSApplicationTerminateReply)applicationShouldTerminate:(NSApplication*)application {
    return [self busy] ? NSTerminateCancel : NSTerminateNow;
}

- (void)quitApp {
    if (![self busy]) {
        [NSApp terminate:nil];
        return;
    }
    [self bringForward];
    tell(_status, kWaitBeforeQuitting);
}

// --- Parts ----------------------------------------------------------------------------------

- (NSWindow*)window {
    return _window;
}

- (NSStatusItem*)statusItem {
    return _statusItem;
}

- (NSTextField*)home {
    return _home;
}

- (NSTextField*)node {
    return _node;
}

- (NSTextField*)storage {
    return _storage;
}

- (NSTextField*)origin {
    return _origin;
}

- (NSTextField*)retention {
    return _retention;
}

- (NSTextField*)status {
    return _status;
}

- (const std::vector<RetainPtr<NSControl>>&)controls {
    return _controls;
}

- (const std::vector<RetainPtr<NSMenuItem>>&)menuActions {
    return _menuActions;
}

- (bool)busy {
    return _operator->busy();
}

@end
