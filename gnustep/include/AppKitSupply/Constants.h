// Names that Apple has given to old values since the AppKit that GNUstep follows.
#pragma once

#import <AppKit/NSAlert.h>
#import <AppKit/NSBitmapImageRep.h>
#import <AppKit/NSButtonCell.h>
#import <AppKit/NSCell.h>
#import <AppKit/NSEvent.h>
#import <AppKit/NSGraphics.h>

static const NSBezelStyle NSBezelStyleRounded = NSRoundedBezelStyle;
static const NSBezelStyle NSBezelStylePush = NSRoundedBezelStyle;
static const NSBezelStyle NSBezelStyleRegularSquare = NSRegularSquareBezelStyle;

static const NSButtonType NSButtonTypeMomentaryLight = NSMomentaryLightButton;
static const NSButtonType NSButtonTypeMomentaryPushIn = NSMomentaryPushInButton;
static const NSButtonType NSButtonTypeSwitch = NSSwitchButton;
static const NSButtonType NSButtonTypeRadio = NSRadioButton;

static const NSCellImagePosition NSImageLeading = NSImageLeft;
static const NSCellImagePosition NSImageTrailing = NSImageRight;

static const NSBitmapImageFileType NSBitmapImageFileTypePNG = NSPNGFileType;
static const NSBitmapImageFileType NSBitmapImageFileTypeTIFF = NSTIFFFileType;

static const NSCompositingOperation NSCompositingOperationCopy = NSCompositeCopy;
static const NSCompositingOperation NSCompositingOperationSourceOver = NSCompositeSourceOver;
static const NSCompositingOperation NSCompositingOperationSourceIn = NSCompositeSourceIn;
static const NSCompositingOperation NSCompositingOperationSourceAtop = NSCompositeSourceAtop;

enum : NSEventType {
    NSEventTypeLeftMouseDown = NSLeftMouseDown,
    NSEventTypeLeftMouseUp = NSLeftMouseUp,
    NSEventTypeRightMouseDown = NSRightMouseDown,
    NSEventTypeRightMouseUp = NSRightMouseUp,
    NSEventTypeMouseMoved = NSMouseMoved,
    NSEventTypeLeftMouseDragged = NSLeftMouseDragged,
    NSEventTypeRightMouseDragged = NSRightMouseDragged,
    NSEventTypeMouseEntered = NSMouseEntered,
    NSEventTypeMouseExited = NSMouseExited,
    NSEventTypeKeyDown = NSKeyDown,
    NSEventTypeKeyUp = NSKeyUp,
    NSEventTypeFlagsChanged = NSFlagsChanged,
    NSEventTypeAppKitDefined = NSAppKitDefined,
    NSEventTypeApplicationDefined = NSApplicationDefined,
    NSEventTypePeriodic = NSPeriodic,
    NSEventTypeScrollWheel = NSScrollWheel,
};

enum : NSEventMask {
    NSEventMaskLeftMouseDown = NSLeftMouseDownMask,
    NSEventMaskLeftMouseUp = NSLeftMouseUpMask,
    NSEventMaskRightMouseDown = NSRightMouseDownMask,
    NSEventMaskRightMouseUp = NSRightMouseUpMask,
    NSEventMaskMouseMoved = NSMouseMovedMask,
    NSEventMaskLeftMouseDragged = NSLeftMouseDraggedMask,
    NSEventMaskKeyDown = NSKeyDownMask,
    NSEventMaskKeyUp = NSKeyUpMask,
    NSEventMaskApplicationDefined = NSApplicationDefinedMask,
    NSEventMaskPeriodic = NSPeriodicMask,
    NSEventMaskAny = NSAnyEventMask,
};

enum : NSEventModifierFlags {
    NSEventModifierFlagCapsLock = NSAlphaShiftKeyMask,
    NSEventModifierFlagShift = NSShiftKeyMask,
    NSEventModifierFlagControl = NSControlKeyMask,
    NSEventModifierFlagOption = NSAlternateKeyMask,
    NSEventModifierFlagCommand = NSCommandKeyMask,
};

static const NSAlertStyle NSAlertStyleWarning = NSWarningAlertStyle;
static const NSAlertStyle NSAlertStyleInformational = NSInformationalAlertStyle;
static const NSAlertStyle NSAlertStyleCritical = NSCriticalAlertStyle;
