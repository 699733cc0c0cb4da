#include "app/StatusMenu.h"

#include "app/CommandSurface.h"
#import "app/DesktopApp.h"
#include "common/Text.h"

namespace veltrix {
namespace {

RetainPtr<NSMenuItem> addItem(NSMenu* menu, std::string_view title, SEL action, NSString* key,
                              id target) {
    RetainPtr<NSMenuItem> item = adoptNS([[NSMenuItem alloc] initWithTitle:toNSString(title)
                                                                    action:action
                                                             keyEquivalent:key]);
    [item setTarget:target];
    [menu addItem:item];
    return item;
}

}  // namespace

StatusMenu makeStatusMenu(id target) {
    StatusMenu made{adoptNS([[NSMenu alloc] initWithTitle:@""]), {}};
    [made.menu setAutoenablesItems:NO];
    for (const CommandItem& command : kMenuCommands) {
        RetainPtr<NSMenuItem> item =
            addItem(made.menu, command.title, @selector(command:), @"", target);
        [item setRepresentedObject:toNSString(command.word)];
        made.commandItems.push_back(std::move(item));
    }
    [made.menu addItem:[NSMenuItem separatorItem]];
    addItem(made.menu, kSettingsItem, @selector(showSettings), @",", target);
    addItem(made.menu, kQuitItem, @selector(quitApp), @"q", target);
    return made;
}

}  // namespace veltrix
