// NSAlert, with a window of our own. Return answers the first button, Escape the one that says
// "Cancel", if there is one.
#import <AppKit/AppKit.h>

#include "common/RetainPtr.h"
#include "gnustep/alert/AlertPanel.h"

using veltrix::adoptNS;
using veltrix::RetainPtr;

@implementation NSAlert (Supply)

- (NSButton*)addButtonWithTitle:(NSString*)title {
    NSButton* const button = [NSButton buttonWithTitle:title target:nil action:nullptr];
    [button setTag:NSAlertFirstButtonReturn + (NSInteger)[_buttons count]];
    if ([_buttons count] == 0)
        [button setKeyEquivalent:@"\r"];
    [_buttons addObject:button];
    return button;
}

- (NSInteger)runModal {
    if ([_buttons count] == 0)
        [self addButtonWithTitle:@"OK"];
    const RetainPtr<VeltrixAlertPanel> panel =
        adoptNS([[VeltrixAlertPanel alloc] initWithMessage:_message_text
                                                      text:_informative_text
                                                   buttons:_buttons]);
    _window = panel;
    [NSApp activateIgnoringOtherApps:YES];
    const NSInteger answer = [NSApp runModalForWindow:panel];
    [panel orderOut:nil];
    _window = nil;
    return answer;
}

@end
