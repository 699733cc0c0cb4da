// NSAlert, with a window of our own. Return answers the first button, Escape the one that says
// "Cancel", if there is one.
#import <AppKit/AppKit.h>

#include "common/RetainPtr.h"
#include "gnustep/alert/AlertPanel.h"
#include "gnustep/runtime/Immortal.h"
#include "gnustep/runtime/SideTable.h"

using veltrix::adoptNS;
using veltrix::RetainPtr;

namespace {

// The window of every alert that has one: from its layout to its answer.
using Panels = veltrix::gnustep::SideTable<RetainPtr<VeltrixAlertPanel>>;

Panels& panels() {
    static veltrix::gnustep::Immortal<Panels> table;
    return *table;
}

}  // namespace

@implementation NSAlert (Supply)

- (NSButton*)addButtonWithTitle:(NSString*)title {
    NSButton* const button = [NSButton buttonWithTitle:title target:nil action:nullptr];
    [button setTag:NSAlertFirstButtonReturn + (NSInteger)[_buttons count]];
    if ([_buttons count] == 0)
        [button setKeyEquivalent:@"\r"];
    [_buttons addObject:button];
    return button;
}

- (void)layout {
    if ([_buttons count] == 0)
        [self addButtonWithTitle:@"OK"];
    panels()[self] = adoptNS([[VeltrixAlertPanel alloc] initWithMessage:_message_text
                                                                   text:_informative_text
                                                                buttons:_buttons]);
}

- (id)window {
    if (panels().find(self) == nullptr)
        [self layout];
    return panels()[self];
}

- (NSInteger)runModal {
    const RetainPtr<VeltrixAlertPanel> panel = [self window];
    [NSApp activateIgnoringOtherApps:YES];
    const NSInteger answer = [NSApp runModalForWindow:panel];
    [panel orderOut:nil];
    panels().forget(self);
    return answer;
}

@end
