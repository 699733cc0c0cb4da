#include "gnustep/runtime/Defaults.h"

#import <AppKit/AppKit.h>

#include "gnustep/runtime/UnfinishedFiles.h"
#include "gnustep/runtime/WindowManager.h"
#include "gnustep/theme/InstalledFonts.h"

namespace veltrix::gnustep {
namespace {

// A font that is named but missing would be reported on standard error at every use; without a name
// GNUstep takes DejaVu Sans.
void registerFonts(NSUserDefaults* defaults) {
    [defaults registerDefaults:@{@"NSFontSize" : @"13"}];
    if (isFontInstalled("Inter-Regular") && isFontInstalled("Inter-SemiBold"))
        [defaults
            registerDefaults:@{@"NSFont" : @"Inter-Regular", @"NSBoldFont" : @"Inter-SemiBold"}];
}

void clearAwayUnfinishedDefaults() {
    NSString* const file =
        [[[NSProcessInfo processInfo] processName] stringByAppendingPathExtension:@"plist"];
    removeUnfinishedFiles([GSDefaultsRootForUser(NSUserName()) fileSystemRepresentation],
                          [file fileSystemRepresentation]);
}

}  // namespace

void registerDefaults() {
    // The library writes its own warnings, such as that of a file that cannot be written, to
    // standard error, besides returning them.
    [[[NSProcessInfo processInfo] debugSet] addObject:@"NoWarn"];

    NSUserDefaults* const defaults = [NSUserDefaults standardUserDefaults];
    clearAwayUnfinishedDefaults();
    registerFonts(defaults);
    [defaults registerDefaults:@{
        // Without a window manager GNUstep draws title bars itself. With one it must leave them
        // to it entirely: otherwise a close from there would end the process, unasked.
        @"GSX11HandlesWindowDecorations" : @(isWindowManagerRunning()),
        // No tile for the application at the bottom of the screen.
        @"GSSuppressAppIcon" : @(YES),
        // The sign before a key equivalent: Alt is the Command key.
        @"GSCommandKeyString" : @"Alt+",
        // Menus without a title, scroll bars on the right.
        @"NSMenuInterfaceStyle" : @"NSMacintoshInterfaceStyle",
        @"NSScrollViewInterfaceStyle" : @"NSMacintoshInterfaceStyle",
        @"GSScrollViewNoInnerBorder" : @(YES),
    }];
}

}  // namespace veltrix::gnustep
