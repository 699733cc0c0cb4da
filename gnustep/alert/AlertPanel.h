// The window of an alert: what it says, and below it the buttons, the first one at the right.
#pragma once

#import <AppKit/AppKit.h>

@interface VeltrixAlertPanel : NSPanel {
    NSArray* _buttons;  // the alert keeps them
}
// The buttons stop the modal session with their tags as code.
- (instancetype)initWithMessage:(NSString*)message text:(NSString*)text buttons:(NSArray*)buttons;
@end
