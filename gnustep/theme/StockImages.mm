// The library's own pictures of check boxes, title bar buttons and the return key, replaced under
// their names: it takes them by name whenever it makes such a control.
#include "gnustep/controls/PaintedImage.h"
#include "gnustep/runtime/Immortal.h"
#include "gnustep/theme/LightTheme.h"
#include "gnustep/theme/Palette.h"

#include <vector>

namespace veltrix::gnustep {
namespace {

constexpr CGFloat kBox = 16;
constexpr NSSize kButtonSize = {kBox, kBox};
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

void replaceImage(NSString* name, NSSize size, void (*paint)()) {
    // A name must be free before another image can bear it.
    NSImage* const stock = [NSImage imageNamed:name];
    [stock setName:[name stringByAppendingString:@"_replaced"]];
    static Immortal<std::vector<RetainPtr<NSImage>>> keptAlive;
    const RetainPtr<NSImage> image = makePaintedImage(size, paint);
    [image setName:name];
    (*keptAlive).push_back(image);
}

}  // namespace

void replaceStockImages() {
    replaceImage(@"GSSwitch", kCheckBoxSize, paintUnchecked);
    replaceImage(@"GSSwitchSelected", kCheckBoxSize, paintChecked);
    replaceImage(@"common_Close", kButtonSize, paintClose);
    replaceImage(@"common_CloseH", kButtonSize, paintClosePressed);
    replaceImage(@"common_CloseBroken", kButtonSize, paintClose);
    replaceImage(@"common_CloseBrokenH", kButtonSize, paintClosePressed);
    replaceImage(@"common_Miniaturize", kButtonSize, paintMiniaturize);
    replaceImage(@"common_MiniaturizeH", kButtonSize, paintMiniaturizePressed);
}

}  // namespace veltrix::gnustep
