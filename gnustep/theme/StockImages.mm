// Pictures of check boxes, title bar buttons, menu items and scrollers in place of the library's
// own, under their names: it takes them by name whenever it makes such a control. Those of menu
// items it does not have, and looks for in every folder again and again.
#include "gnustep/controls/PaintedImage.h"
#include "gnustep/runtime/Immortal.h"
#include "gnustep/theme/LightTheme.h"
#include "gnustep/theme/Palette.h"

#include <vector>

namespace veltrix::gnustep {
namespace {

constexpr CGFloat kBox = 16;
constexpr NSSize kButtonSize = {kBox, kBox};
constexpr NSSize kMenuSize = {10, 10};
// With some air to the right, where the title follows.
constexpr NSSize kCheckBoxSize = {kBox + 5, kBox};

NSBezierPath* boxPath() {
    return roundedEdge(NSMakeRect(0, 0, kBox, kBox), 4);
}

void strokeLines(std::initializer_list<NSPoint> points, CGFloat width) {
    NSBezierPath* const path = [NSBezierPath bezierPath];
    [path setLineWidth:width];
    [path setLineCapStyle:NSRoundLineCapStyle];
    [path setLineJoinStyle:NSRoundLineJoinStyle];
    for (const NSPoint& point : points) {
        if ([path isEmpty])
            [path moveToPoint:point];
        else
            [path lineToPoint:point];
    }
    [path stroke];
}

void paintUnchecked() {
    [palette::control() setFill];
    [boxPath() fill];
    [palette::controlEdge() setStroke];
    [boxPath() stroke];
}

void paintChecked() {
    [palette::accent() setFill];
    [boxPath() fill];
    [palette::accentPressed() setStroke];
    [boxPath() stroke];
    [palette::onAccent() setStroke];
    strokeLines({{4.2, 8.2}, {6.9, 5.4}, {11.8, 10.8}}, 1.8);
}

void paintClose() {
    [palette::secondaryText() setStroke];
    strokeLines({{4.5, 4.5}, {11.5, 11.5}}, 1.5);
    strokeLines({{4.5, 11.5}, {11.5, 4.5}}, 1.5);
}

void paintClosePressed() {
    [palette::hairline() setFill];
    [[NSBezierPath bezierPathWithOvalInRect:NSMakeRect(0, 0, kBox, kBox)] fill];
    paintClose();
}

void paintMiniaturize() {
    [palette::secondaryText() setStroke];
    strokeLines({{4.5, 5.5}, {11.5, 5.5}}, 1.5);
}

void paintMiniaturizePressed() {
    [palette::hairline() setFill];
    [[NSBezierPath bezierPathWithOvalInRect:NSMakeRect(0, 0, kBox, kBox)] fill];
    paintMiniaturize();
}

void paintSubmenuArrow() {
    [palette::secondaryText() setStroke];
    strokeLines({{3, 1.5}, {6.5, 5}, {3, 8.5}}, 1.3);
}

void paintMenuCheck() {
    [palette::text() setStroke];
    strokeLines({{1.5, 4.8}, {4, 2.2}, {8.5, 7.6}}, 1.5);
}

void paintMenuMixed() {
    [palette::text() setStroke];
    strokeLines({{2, 5}, {8, 5}}, 1.5);
}

// Our scrollers have neither arrows nor a dimple, but the library prepares these all the same.
void paintNothing() {}

// `name` is the one that the library looks for after its own aliases, NSMenuArrow's for instance,
// have been followed. The library's own picture, if there is one, is only read from its file when
// it is asked for by name, which it usually has not been yet.
void supplyImage(NSString* name, NSSize size, void (*paint)()) {
    static Immortal<std::vector<RetainPtr<NSImage>>> keptAlive;
    const RetainPtr<NSImage> image = makePaintedImage(size, paint);
    if (![image setName:name]) {
        // A name must be free before another image can bear it.
        NSImage* const stock = [NSImage imageNamed:name];
        [stock setName:[name stringByAppendingString:@"_replaced"]];
        [image setName:name];
    }
    (*keptAlive).push_back(image);
}

}  // namespace

void replaceStockImages() {
    supplyImage(@"GSSwitch", kCheckBoxSize, paintUnchecked);
    supplyImage(@"GSSwitchSelected", kCheckBoxSize, paintChecked);
    supplyImage(@"common_Close", kButtonSize, paintClose);
    supplyImage(@"common_CloseH", kButtonSize, paintClosePressed);
    supplyImage(@"common_CloseBroken", kButtonSize, paintClose);
    supplyImage(@"common_CloseBrokenH", kButtonSize, paintClosePressed);
    supplyImage(@"common_Miniaturize", kButtonSize, paintMiniaturize);
    supplyImage(@"common_MiniaturizeH", kButtonSize, paintMiniaturizePressed);
    supplyImage(@"GSMenuArrow", kMenuSize, paintSubmenuArrow);
    supplyImage(@"GSMenuSelected", kMenuSize, paintMenuCheck);
    supplyImage(@"GSMenuMixed", kMenuSize, paintMenuMixed);
    for (NSString* arrow in @[ @"Up", @"Down", @"Left", @"Right" ]) {
        NSString* const name = [@"common_Arrow" stringByAppendingString:arrow];
        supplyImage(name, kButtonSize, paintNothing);
        supplyImage([name stringByAppendingString:@"H"], kButtonSize, paintNothing);
    }
    supplyImage(@"common_Dimple", kButtonSize, paintNothing);
    supplyImage(@"common_DimpleHoriz", kButtonSize, paintNothing);
}

}  // namespace veltrix::gnustep
