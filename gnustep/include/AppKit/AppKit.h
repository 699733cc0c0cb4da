// GNUstep's AppKit and what it lacks of Apple's, under Apple's own names, so that a source file
// says `#import <AppKit/AppKit.h>` and nothing else on either system. Main thread only, like
// everything in AppKit, unless a declaration says otherwise.
#pragma once

#include_next <AppKit/AppKit.h>

#import <AppKitSupply/Accessibility.h>
#import <AppKitSupply/Application.h>
#import <AppKitSupply/Constants.h>
#import <AppKitSupply/Controls.h>
#import <AppKitSupply/Layout.h>
#import <AppKitSupply/StackView.h>
#import <AppKitSupply/StatusBar.h>

// As on macOS, so that it also stands for a selector or a class.
#undef nil
#define nil nullptr
