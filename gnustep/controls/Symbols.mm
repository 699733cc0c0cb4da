// The system symbols, painted on a square of 16 points whose origin is at the bottom left.
#import <AppKit/AppKit.h>

#include "common/RetainPtr.h"
#include "gnustep/controls/PaintedImage.h"
#include "gnustep/runtime/Immortal.h"
#include "gnustep/runtime/SideTable.h"

namespace {

using veltrix::adoptNS;
using veltrix::RetainPtr;

constexpr CGFloat kSide = 16;
constexpr CGFloat kStroke = 1.3;

NSBezierPath* strokedPath() {
    NSBezierPath* const path = [NSBezierPath bezierPath];
    [path setLineWidth:kStroke];
    [path setLineCapStyle:NSRoundLineCapStyle];
    [path setLineJoinStyle:NSRoundLineJoinStyle];
    return path;
}

void strokeBox(CGFloat x, CGFloat y, CGFloat width, CGFloat height, CGFloat radius) {
    NSBezierPath* const path =
        [NSBezierPath bezierPathWithRoundedRect:NSMakeRect(x, y, width, height)
                                        xRadius:radius
                                        yRadius:radius];
    [path setLineWidth:kStroke];
    [path stroke];
}

void strokeLine(CGFloat x1, CGFloat y1, CGFloat x2, CGFloat y2) {
    NSBezierPath* const path = strokedPath();
    [path moveToPoint:NSMakePoint(x1, y1)];
    [path lineToPoint:NSMakePoint(x2, y2)];
    [path stroke];
}

NSRect circle(CGFloat x, CGFloat y, CGFloat radius) {
    return NSMakeRect(x - radius, y - radius, 2 * radius, 2 * radius);
}

void paintExternalDrive() {
    [[NSColor controlTextColor] set];
    strokeBox(1, 3, 14, 10, 2.4);
    strokeLine(1.4, 7, 14.6, 7);
    [[NSBezierPath bezierPathWithOvalInRect:circle(11.9, 5, 0.85)] fill];
}

void paintGrid() {
    [[NSColor controlTextColor] set];
    for (const CGFloat x : {1.65, 9.15})
        for (const CGFloat y : {2.65, 9.15})
            strokeBox(x, y, 5.2, 4.2, 1.1);
}

void paintFilm() {
    [[NSColor controlTextColor] set];
    strokeBox(1.15, 2.65, 13.7, 10.7, 2);
    for (const CGFloat x : {4.5, 11.5})
        strokeLine(x, 3, x, 13);
    strokeLine(4.5, 8, 11.5, 8);
    for (const CGFloat y : {5.8, 10.2}) {
        strokeLine(1.4, y, 4.2, y);
        strokeLine(11.8, y, 14.6, y);
    }
}

void strokeShoulders(CGFloat left, CGFloat top, CGFloat right) {
    NSBezierPath* const path = strokedPath();
    const CGFloat middle = (left + right) / 2;
    const CGFloat bottom = 2.9;
    [path moveToPoint:NSMakePoint(left, bottom)];
    [path curveToPoint:NSMakePoint(middle, top)
         controlPoint1:NSMakePoint(left, (bottom + top) / 2 + 0.6)
         controlPoint2:NSMakePoint(left + (middle - left) * 0.45, top)];
    [path curveToPoint:NSMakePoint(right, bottom)
         controlPoint1:NSMakePoint(right - (right - middle) * 0.45, top)
         controlPoint2:NSMakePoint(right, (bottom + top) / 2 + 0.6)];
    [path closePath];
    [path stroke];
}

void strokeHead(CGFloat x, CGFloat y, CGFloat radius) {
    NSBezierPath* const path = [NSBezierPath bezierPathWithOvalInRect:circle(x, y, radius)];
    [path setLineWidth:kStroke];
    [path stroke];
}

void paintTwoPersons() {
    [[NSColor controlTextColor] set];
    strokeHead(5.6, 10.9, 2.3);
    strokeShoulders(1, 7.2, 10.2);
    strokeHead(11.7, 10.2, 1.8);
    NSBezierPath* const shoulder = strokedPath();
    [shoulder moveToPoint:NSMakePoint(11.6, 6.7)];
    [shoulder curveToPoint:NSMakePoint(15.2, 2.9)
             controlPoint1:NSMakePoint(14, 6.7)
             controlPoint2:NSMakePoint(15.2, 5)];
    [shoulder lineToPoint:NSMakePoint(12.4, 2.9)];
    [shoulder stroke];
}

void paintPlay() {
    [[NSColor controlTextColor] set];
    NSBezierPath* const path = strokedPath();
    [path setLineWidth:1.8];
    [path moveToPoint:NSMakePoint(4.4, 3.4)];
    [path lineToPoint:NSMakePoint(4.4, 12.6)];
    [path lineToPoint:NSMakePoint(12.6, 8)];
    [path closePath];
    [path fill];
    [path stroke];
}

void paintStop() {
    [[NSColor controlTextColor] set];
    [[NSBezierPath bezierPathWithRoundedRect:NSMakeRect(3, 3, 10, 10) xRadius:1.8
                                     yRadius:1.8] fill];
}

struct Symbol {
    NSString* name;
    void (*paint)();
};

const Symbol* symbolNamed(NSString* name) {
    static const Symbol symbols[] = {
        {@"externaldrive", paintExternalDrive},
        {@"rectangle.grid.2x2", paintGrid},
        {@"film", paintFilm},
        {@"person.2", paintTwoPersons},
        {@"play.fill", paintPlay},
        {@"stop.fill", paintStop},
    };
    for (const Symbol& symbol : symbols)
        if ([symbol.name isEqualToString:name])
            return &symbol;
    return nullptr;
}

veltrix::gnustep::SideTable<RetainPtr<NSString>>& descriptions() {
    static veltrix::gnustep::Immortal<veltrix::gnustep::SideTable<RetainPtr<NSString>>> table;
    return *table;
}

}  // namespace

@implementation NSImage (SymbolSupply)

+ (NSImage*)imageWithSystemSymbolName:(NSString*)name
             accessibilityDescription:(NSString*)description {
    const Symbol* const symbol = symbolNamed(name);
    if (!symbol)
        return nil;
    RetainPtr<NSImage> image =
        veltrix::gnustep::makePaintedImage(NSMakeSize(kSide, kSide), symbol->paint);
    [image setAccessibilityDescription:description];
    return image.autorelease();
}

- (NSString*)accessibilityDescription {
    const RetainPtr<NSString>* const description = descriptions().find(self);
    return description ? description->get() : nil;
}

- (void)setAccessibilityDescription:(NSString*)description {
    descriptions()[self] = adoptNS([description copy]);
}

@end
