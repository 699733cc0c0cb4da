// NSRunningApplication, as far as one program's own processes go.
#include "common/RetainPtr.h"
#include "gnustep/application/InstanceRegistry.h"
#include "gnustep/runtime/DisplayWindow.h"
#include "gnustep/runtime/Immortal.h"
#include "gnustep/runtime/SetUp.h"
#include "gnustep/runtime/WindowManager.h"

#import <AppKit/AppKit.h>

#include <memory>

#include <unistd.h>

using veltrix::adoptNS;
using veltrix::RetainPtr;
using veltrix::gnustep::InstanceRegistry;

namespace {

// None for a program without a bundle identifier. Destroyed at exit: this process leaves then.
std::unique_ptr<InstanceRegistry>& ownRegistry() {
    static std::unique_ptr<InstanceRegistry> registry;
    return registry;
}

NSString* ownIdentifier() {
    return [[NSBundle mainBundle] bundleIdentifier];
}

// Whatever is shown comes to the front, with a modal window before all others. What is hidden
// stays so, unless the delegate has something to show to a person who started the program again.
void comeForward() {
    NSMutableArray* const visible = [NSMutableArray array];
    for (NSWindow* window in [NSApp orderedWindows])
        if ([window isVisible] && [window canBecomeMainWindow])
            [visible addObject:window];
    for (NSWindow* window in [visible reverseObjectEnumerator])
        [window orderFrontRegardless];
    const id delegate = [NSApp delegate];
    if ([delegate respondsToSelector:@selector(applicationShouldHandleReopen:hasVisibleWindows:)])
        [delegate applicationShouldHandleReopen:NSApp hasVisibleWindows:[visible count] > 0];
    [NSApp activateIgnoringOtherApps:YES];
    [[NSApp modalWindow] makeKeyAndOrderFront:nil];
    if (NSWindow* const window = [NSApp keyWindow])
        veltrix::gnustep::activateWindow(veltrix::gnustep::windowOnDisplay(window));
}

}  // namespace

// Waits on the run loop for other processes to ask this one to come forward.
@interface VeltrixActivationListener : NSObject <RunLoopEvents>
@end

@implementation VeltrixActivationListener

- (void)receivedEvent:(void*)data
                 type:(RunLoopEventType)type
                extra:(void*)extra
              forMode:(NSString*)mode {
    (void)data;
    (void)type;
    (void)extra;
    (void)mode;
    // Not from here, where the run loop is reading descriptors: what the delegate does may want to
    // read others, such as a server's reply, and would wait in vain.
    if (ownRegistry()->takeActivations())
        [self performSelector:@selector(comeForward)
                   withObject:nil
                   afterDelay:0
                      inModes:@[
                          NSDefaultRunLoopMode, NSModalPanelRunLoopMode, NSEventTrackingRunLoopMode
                      ]];
}

- (void)comeForward {
    comeForward();
}

@end

@interface VeltrixRunningApplication : NSRunningApplication {
    InstanceRegistry::Instance _instance;
    RetainPtr<NSString> _identifier;
}
- (instancetype)initWithInstance:(const InstanceRegistry::Instance&)instance
                      identifier:(NSString*)identifier;
@end

@implementation VeltrixRunningApplication

- (instancetype)initWithInstance:(const InstanceRegistry::Instance&)instance
                      identifier:(NSString*)identifier {
    self = [super init];
    if (self) {
        _instance = instance;
        _identifier = adoptNS([identifier copy]);
    }
    return self;
}

- (pid_t)processIdentifier {
    return _instance.pid;
}

- (NSString*)bundleIdentifier {
    return _identifier;
}

- (BOOL)isOwn {
    return _instance.pid == getpid();
}

- (BOOL)isActive {
    return [self isOwn] && [NSApp isActive];
}

- (BOOL)isTerminated {
    if ([self isOwn])
        return NO;
    for (const auto& running : ownRegistry()->running())
        if (running.name == _instance.name)
            return NO;
    return YES;
}

- (BOOL)activateWithOptions:(NSApplicationActivationOptions)options {
    (void)options;
    if (![self isOwn])
        return ownRegistry()->sendActivation(_instance);
    [NSApp activateIgnoringOtherApps:YES];
    return YES;
}

- (BOOL)isEqual:(id)other {
    return [other isKindOfClass:[NSRunningApplication class]] &&
           [other processIdentifier] == _instance.pid;
}

- (NSUInteger)hash {
    return (NSUInteger)_instance.pid;
}

@end

@implementation NSRunningApplication (Supply)

+ (NSArray*)runningApplicationsWithBundleIdentifier:(NSString*)identifier {
    NSMutableArray* const applications = [NSMutableArray array];
    if (!ownRegistry() || ![identifier isEqualToString:ownIdentifier()])
        return applications;
    for (const auto& instance : ownRegistry()->running())
        [applications
            addObject:adoptNS([[VeltrixRunningApplication alloc] initWithInstance:instance
                                                                       identifier:identifier])
                          .get()];
    return applications;
}

+ (id)currentApplication {
    return adoptNS([[VeltrixRunningApplication alloc] initWithInstance:{getpid(), std::string()}
                                                            identifier:ownIdentifier()])
        .autorelease();
}

@end

namespace veltrix::gnustep {

void registerRunningApplication() {
    const std::optional<std::string> folder = InstanceRegistry::runtimeFolder();
    if (!ownIdentifier() || !folder)
        return;
    auto registry =
        std::make_unique<InstanceRegistry>(*folder, std::string([ownIdentifier() UTF8String]));
    if (!registry->enter())
        return;
    ownRegistry() = std::move(registry);

    static Immortal<RetainPtr<VeltrixActivationListener>> listener(
        adoptNS([[VeltrixActivationListener alloc] init]));
    void* const descriptor = reinterpret_cast<void*>((intptr_t)ownRegistry()->activationSocket());
    for (NSString* mode in
         @[ NSDefaultRunLoopMode, NSModalPanelRunLoopMode, NSEventTrackingRunLoopMode ])
        [[NSRunLoop currentRunLoop] addEvent:descriptor
                                        type:ET_RDESC
                                     watcher:(*listener).get()
                                     forMode:mode];
}

}  // namespace veltrix::gnustep
