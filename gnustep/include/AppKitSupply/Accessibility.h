// What a shell tells assistive technology. GNUstep has nobody to tell it to: labels are kept for
// whoever asks, announcements for a test to read.
#pragma once

#import <AppKit/NSAccessibility.h>
#import <AppKit/NSMenuItem.h>
#import <AppKit/NSView.h>
#import <AppKit/NSWindow.h>

typedef NSString* NSAccessibilityNotificationName;
typedef NSString* NSAccessibilityNotificationUserInfoKey;

// NSAccessibilityPostNotificationWithUserInfo(), which does nothing in GNUstep, posts on the
// default notification centre here, under the same name and with the same object and user info.

@interface NSView (AccessibilitySupply)
// The label given, else the title of a button, else nil.
@property (copy) NSString* accessibilityLabel;
@property (copy) NSString* accessibilityHelp;
@property (copy) NSString* accessibilityIdentifier;
@property (retain) id accessibilityTitleUIElement;
@property (getter=isAccessibilityElement) BOOL accessibilityElement;
@end

@interface NSWindow (AccessibilitySupply)
@property (copy) NSString* accessibilityLabel;
@end
