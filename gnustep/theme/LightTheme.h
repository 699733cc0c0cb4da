// The look of every window: light, flat, with rounded controls. A theme in GNUstep's sense, made in
// code instead of loaded from a bundle; its parts stand in the LightTheme+*.mm files.
#pragma once

#import <AppKit/AppKit.h>
#import <GNUstepGUI/GSTheme.h>

@interface VeltrixLightTheme : GSTheme
@end

namespace veltrix::gnustep {

// A closed path along the middle of the outermost pixels of the rectangle.
NSBezierPath* roundedEdge(NSRect rect, CGFloat radius);

constexpr CGFloat kCornerRadius = 6;

// Buttons and fields are equally high, to stand in one row.
constexpr CGFloat kControlHeight = 28;

// Puts painted images in the place of the library's check boxes, window buttons and arrows.
void replaceStockImages();

}  // namespace veltrix::gnustep
