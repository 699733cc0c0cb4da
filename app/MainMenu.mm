#include "app/MainMenu.h"

#include "common/RetainPtr.h"

#import <AppKit/AppKit.h>

namespace veltrix {
namespace {

// Without a target: the first responder, the key window in the last place, answers.
void addItem(NSMenu* menu, NSString* title, SEL action, NSString* key) {
    [menu addItem:adoptNS([[NSMenuItem alloc] initWithTitle:title action:action keyEquivalent:key])
                      .get()];
}

NSMenu* addSubmenu(NSMenu* bar, NSString* title) {
    const RetainPtr<NSMenuItem> item = adoptNS([[NSMenuItem alloc] initWithTitle:title
                                                                          action:nullptr
                                                                   keyEquivalent:@""]);
    const RetainPtr<NSMenu> menu = adoptNS([[NSMenu alloc] initWithTitle:title]);
    [item setSubmenu:menu];
    [bar addItem:item];
    return menu.get();  // kept alive by its item
}

}  // namespace

void installMainMenu() {
    const RetainPtr<NSMenu> bar = adoptNS([[NSMenu alloc] initWithTitle:@""]);
    addSubmenu(bar, @"Application");  // the first submenu is the application's, whatever is in it
    addItem(addSubmenu(bar, @"File"), @"Close", @selector(performClose:), @"w");

    NSMenu* const edit = addSubmenu(bar, @"Edit");
    addItem(edit, @"Undo", NSSelectorFromString(@"undo:"), @"z");
    addItem(edit, @"Redo", NSSelectorFromString(@"redo:"), @"Z");
    [edit addItem:[NSMenuItem separatorItem]];
    addItem(edit, @"Cut", @selector(cut:), @"x");
    addItem(edit, @"Copy", @selector(copy:), @"c");
    addItem(edit, @"Paste", @selector(paste:), @"v");
    addItem(edit, @"Select All", @selector(selectAll:), @"a");
    [NSApp setMainMenu:bar];
}

}  // namespace veltrix
