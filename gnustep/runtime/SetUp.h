// What has to be in place before the first object of AppKit exists. Everything here is called once,
// by the first +[NSApplication sharedApplication] (SetUp.mm): a program need not know of it.
#pragma once

namespace veltrix::gnustep {

// Wraps around methods of the library, before the application object exists.
void installLockBreaking();
void leaveOutImageMagick();
void installSideTables();
void installLayoutTriggers();
void installStatusStrip();
void installFieldLook();
void installOpenPanelLook();
void installActivationPolicy();
void installHiddenMenus();
void installEventLoopFixes();
void installQuietNotificationCenter();

// Colours and pictures, once the application object exists, as they need the display.
void installLook();

// Lets other processes of the program find this one.
void registerRunningApplication();

}  // namespace veltrix::gnustep
