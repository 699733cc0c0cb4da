// The application delegate: owns the status item, the settings window and its fields, and answers
// what AppKit asks. One for the life of the process; main thread only. What a command does is
// decided by the operator, which sees this object through DesktopShell.
#pragma once

#include "app/DesktopEnvironment.h"
#include "common/RetainPtr.h"

#import <AppKit/AppKit.h>

#include <memory>
#include <string_view>
#include <vector>

namespace veltrix {
class DesktopShell;
class Operator;
}  // namespace veltrix

@interface DesktopApp : NSObject <NSApplicationDelegate> {
    veltrix::RetainPtr<NSWindow> _window;
    veltrix::RetainPtr<NSStatusItem> _statusItem;
    veltrix::RetainPtr<NSTextField> _home;
    veltrix::RetainPtr<NSTextField> _node;
    veltrix::RetainPtr<NSTextField> _storage;
    veltrix::RetainPtr<NSTextField> _origin;
    veltrix::RetainPtr<NSTextField> _retention;
    veltrix::RetainPtr<NSTextField> _status;
    std::vector<veltrix::RetainPtr<NSControl>> _controls;
    std::vector<veltrix::RetainPtr<NSMenuItem>> _menuActions;
    std::unique_ptr<veltrix::DesktopEnvironment> _environment;
    std::unique_ptr<veltrix::DesktopShell> _shell;
    std::shared_ptr<veltrix::Operator> _operator;
}

// With the system's own settings, queues and process environment.
- (instancetype)init;
- (instancetype)initWithEnvironment:(veltrix::DesktopEnvironment)environment;

// The parts of the shell; null before launch where the launch makes them.
- (NSWindow*)window;
- (NSStatusItem*)statusItem;
- (NSTextField*)home;
- (NSTextField*)node;
- (NSTextField*)storage;
- (NSTextField*)origin;
- (NSTextField*)retention;
- (NSTextField*)status;
// Everything of the settings window, and of the menu, that is locked while an action runs.
- (const std::vector<veltrix::RetainPtr<NSControl>>&)controls;
- (const std::vector<veltrix::RetainPtr<NSMenuItem>>&)menuActions;
- (bool)busy;

// What the shell does for the operator and for itself.
- (void)perform:(std::string_view)command;
- (bool)save;
- (void)bringForward;
- (void)runSetupSessionWithExecutable:(const std::string&)executable home:(const std::string&)home;

// The actions of menu items and buttons.
- (void)command:(NSMenuItem*)item;
- (void)buttonCommand:(NSButton*)button;
- (void)choose:(NSButton*)button;
- (void)showSettings;
- (void)quitApp;

@end
