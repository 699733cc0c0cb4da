// The window of an open menu.
#pragma once

#import <AppKit/AppKit.h>

@interface VeltrixMenuPanel : NSPanel {
    NSMenuView* _menuView;  // kept alive by the view tree
}
- (instancetype)initWithMenu:(NSMenu*)menu;
// Below the rectangle (in screen coordinates), as far to the left as it takes to fit.
- (void)dropDownFrom:(NSRect)anchor onScreen:(NSScreen*)screen;
- (NSMenuView*)menuView;
@end
