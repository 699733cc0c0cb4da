// The status bar: a strip of buttons at the top right of the screen, in the place of macOS' menu
// bar. It stays in front and usable while a modal window is up. A status item takes either a menu
// without submenus or its button's own action.
#pragma once

#import <AppKit/NSStatusBar.h>
#import <AppKit/NSStatusBarButton.h>
#import <AppKit/NSStatusItem.h>

@interface NSStatusItem (ButtonSupply)
@property (readonly, retain) NSStatusBarButton* button;
@end
