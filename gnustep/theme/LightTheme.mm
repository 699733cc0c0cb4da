#include "gnustep/theme/LightTheme.h"

#include "common/RetainPtr.h"
#include "gnustep/runtime/Immortal.h"
#include "gnustep/theme/Palette.h"

namespace palette = veltrix::gnustep::palette;

namespace veltrix::gnustep {
namespace {

struct SystemColor {
    NSString* name;
    NSColor* (*color)();
};

RetainPtr<NSColorList> makeSystemColors() {
    static const SystemColor colors[] = {
        {@"alternateRowBackgroundColor", palette::window},
        {@"alternateSelectedControlColor", palette::accent},
        {@"alternateSelectedControlTextColor", palette::onAccent},
        {@"controlBackgroundColor", palette::control},
        {@"controlColor", palette::window},
        {@"controlDarkShadowColor", palette::controlEdge},
        {@"controlHighlightColor", palette::control},
        {@"controlLightHighlightColor", palette::control},
        {@"controlShadowColor", palette::hairline},
        {@"controlTextColor", palette::text},
        {@"disabledControlTextColor", palette::disabledText},
        {@"gridColor", palette::hairline},
        {@"headerColor", palette::window},
        {@"headerTextColor", palette::secondaryText},
        {@"highlightColor", palette::control},
        {@"highlightedTableRowBackgroundColor", palette::accent},
        {@"highlightedTableRowTextColor", palette::onAccent},
        {@"keyboardFocusIndicatorColor", palette::focusRing},
        {@"knobColor", palette::scrollKnob},
        {@"labelColor", palette::text},
        {@"rowBackgroundColor", palette::field},
        {@"scrollBarColor", palette::window},
        {@"secondaryLabelColor", palette::secondaryText},
        {@"secondarySelectedControlColor", palette::selectedText},
        {@"selectedControlColor", palette::selectedText},
        {@"selectedControlTextColor", palette::text},
        {@"selectedKnobColor", palette::scrollKnob},
        {@"selectedMenuItemColor", palette::accent},
        {@"selectedMenuItemTextColor", palette::onAccent},
        {@"selectedTextBackgroundColor", palette::selectedText},
        {@"selectedTextColor", palette::text},
        {@"shadowColor", palette::hairline},
        {@"textBackgroundColor", palette::field},
        {@"textColor", palette::text},
        {@"toolTipColor", palette::toolTip},
        {@"toolTipTextColor", palette::text},
        {@"windowBackgroundColor", palette::window},
        {@"windowFrameColor", palette::titleBar},
        {@"windowFrameTextColor", palette::text},
    };
    RetainPtr<NSColorList> list = adoptNS([[NSColorList alloc] initWithName:@"System"]);
    for (const SystemColor& entry : colors)
        [list setColor:entry.color() forKey:entry.name];
    return list;
}

}  // namespace

NSBezierPath* roundedEdge(NSRect rect, CGFloat radius) {
    return [NSBezierPath bezierPathWithRoundedRect:NSInsetRect(rect, 0.5, 0.5)
                                           xRadius:radius
                                           yRadius:radius];
}

}  // namespace veltrix::gnustep

@implementation VeltrixLightTheme

// Under any other name the next change of defaults would bring the stock theme back.
- (NSString*)name {
    return @"GNUstep";
}

- (NSColorList*)colors {
    static veltrix::gnustep::Immortal<veltrix::RetainPtr<NSColorList>> list(
        veltrix::gnustep::makeSystemColors());
    return *list;
}

@end
