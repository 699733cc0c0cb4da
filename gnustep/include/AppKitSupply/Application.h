// The application among others, and its run loop.
#pragma once

#import <AppKit/NSApplication.h>
#import <AppKit/NSRunningApplication.h>
#import <Foundation/NSFileManager.h>

@interface NSApplication (ActivationPolicySupply)
- (NSApplicationActivationPolicy)activationPolicy;
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)policy;
@end

@interface NSFileManager (HomeSupply)
// $HOME where it is set, as tests and scripts expect, else the account's.
@property (readonly, copy) NSURL* homeDirectoryForCurrentUser;
@end
