// The anchors of a view. The library's own anchors forget which view and which attribute they stand
// for, and its constraint-making methods the constant as well.
#import <AppKit/AppKit.h>

#include "common/RetainPtr.h"
#include "gnustep/runtime/Immortal.h"
#include "gnustep/runtime/SideTable.h"

using veltrix::adoptNS;

namespace {

struct AnchorRow {
    NSView* view = nil;
    NSLayoutAttribute attribute = NSLayoutAttributeNotAnAttribute;
};

veltrix::gnustep::SideTable<AnchorRow>& anchors() {
    static veltrix::gnustep::Immortal<veltrix::gnustep::SideTable<AnchorRow>> table;
    return *table;
}

template <typename Kind> Kind* makeAnchor(NSView* view, NSLayoutAttribute attribute) {
    veltrix::RetainPtr<Kind> anchor = adoptNS([[Kind alloc] init]);
    anchors()[anchor.get()] = {view, attribute};
    return anchor.autorelease();
}

NSLayoutConstraint* constraintBetween(NSLayoutAnchor* first, NSLayoutRelation relation,
                                      NSLayoutAnchor* second, CGFloat multiplier,
                                      CGFloat constant) {
    const AnchorRow from = anchors()[first];
    const AnchorRow to = second ? anchors()[second] : AnchorRow();
    return [NSLayoutConstraint constraintWithItem:from.view
                                        attribute:from.attribute
                                        relatedBy:relation
                                           toItem:to.view
                                        attribute:to.attribute
                                       multiplier:multiplier
                                         constant:constant];
}

}  // namespace

@implementation NSLayoutAnchor (LayoutSupply)

- (id)item {
    return anchors()[self].view;
}

- (NSLayoutConstraint*)constraintEqualToAnchor:(NSLayoutAnchor*)anchor {
    return constraintBetween(self, NSLayoutRelationEqual, anchor, 1, 0);
}

- (NSLayoutConstraint*)constraintGreaterThanOrEqualToAnchor:(NSLayoutAnchor*)anchor {
    return constraintBetween(self, NSLayoutRelationGreaterThanOrEqual, anchor, 1, 0);
}

- (NSLayoutConstraint*)constraintLessThanOrEqualToAnchor:(NSLayoutAnchor*)anchor {
    return constraintBetween(self, NSLayoutRelationLessThanOrEqual, anchor, 1, 0);
}

- (NSLayoutConstraint*)constraintEqualToAnchor:(NSLayoutAnchor*)anchor constant:(CGFloat)constant {
    return constraintBetween(self, NSLayoutRelationEqual, anchor, 1, constant);
}

- (NSLayoutConstraint*)constraintGreaterThanOrEqualToAnchor:(NSLayoutAnchor*)anchor
                                                   constant:(CGFloat)constant {
    return constraintBetween(self, NSLayoutRelationGreaterThanOrEqual, anchor, 1, constant);
}

- (NSLayoutConstraint*)constraintLessThanOrEqualToAnchor:(NSLayoutAnchor*)anchor
                                                constant:(CGFloat)constant {
    return constraintBetween(self, NSLayoutRelationLessThanOrEqual, anchor, 1, constant);
}

@end

@implementation NSLayoutDimension (LayoutSupply)

- (NSLayoutConstraint*)constraintEqualToConstant:(CGFloat)constant {
    return constraintBetween(self, NSLayoutRelationEqual, nil, 1, constant);
}

- (NSLayoutConstraint*)constraintGreaterThanOrEqualToConstant:(CGFloat)constant {
    return constraintBetween(self, NSLayoutRelationGreaterThanOrEqual, nil, 1, constant);
}

- (NSLayoutConstraint*)constraintLessThanOrEqualToConstant:(CGFloat)constant {
    return constraintBetween(self, NSLayoutRelationLessThanOrEqual, nil, 1, constant);
}

- (NSLayoutConstraint*)constraintEqualToAnchor:(NSLayoutDimension*)anchor
                                    multiplier:(CGFloat)multiplier {
    return constraintBetween(self, NSLayoutRelationEqual, anchor, multiplier, 0);
}

- (NSLayoutConstraint*)constraintGreaterThanOrEqualToAnchor:(NSLayoutDimension*)anchor
                                                 multiplier:(CGFloat)multiplier {
    return constraintBetween(self, NSLayoutRelationGreaterThanOrEqual, anchor, multiplier, 0);
}

- (NSLayoutConstraint*)constraintLessThanOrEqualToAnchor:(NSLayoutDimension*)anchor
                                              multiplier:(CGFloat)multiplier {
    return constraintBetween(self, NSLayoutRelationLessThanOrEqual, anchor, multiplier, 0);
}

- (NSLayoutConstraint*)constraintEqualToAnchor:(NSLayoutDimension*)anchor
                                    multiplier:(CGFloat)multiplier
                                      constant:(CGFloat)constant {
    return constraintBetween(self, NSLayoutRelationEqual, anchor, multiplier, constant);
}

- (NSLayoutConstraint*)constraintGreaterThanOrEqualToAnchor:(NSLayoutDimension*)anchor
                                                 multiplier:(CGFloat)multiplier
                                                   constant:(CGFloat)constant {
    return constraintBetween(self, NSLayoutRelationGreaterThanOrEqual, anchor, multiplier,
                             constant);
}

- (NSLayoutConstraint*)constraintLessThanOrEqualToAnchor:(NSLayoutDimension*)anchor
                                              multiplier:(CGFloat)multiplier
                                                constant:(CGFloat)constant {
    return constraintBetween(self, NSLayoutRelationLessThanOrEqual, anchor, multiplier, constant);
}

@end

@implementation NSView (AnchorSupply)

- (NSLayoutXAxisAnchor*)leadingAnchor {
    return makeAnchor<NSLayoutXAxisAnchor>(self, NSLayoutAttributeLeading);
}
- (NSLayoutXAxisAnchor*)trailingAnchor {
    return makeAnchor<NSLayoutXAxisAnchor>(self, NSLayoutAttributeTrailing);
}
- (NSLayoutXAxisAnchor*)leftAnchor {
    return makeAnchor<NSLayoutXAxisAnchor>(self, NSLayoutAttributeLeft);
}
- (NSLayoutXAxisAnchor*)rightAnchor {
    return makeAnchor<NSLayoutXAxisAnchor>(self, NSLayoutAttributeRight);
}
- (NSLayoutXAxisAnchor*)centerXAnchor {
    return makeAnchor<NSLayoutXAxisAnchor>(self, NSLayoutAttributeCenterX);
}
- (NSLayoutYAxisAnchor*)topAnchor {
    return makeAnchor<NSLayoutYAxisAnchor>(self, NSLayoutAttributeTop);
}
- (NSLayoutYAxisAnchor*)bottomAnchor {
    return makeAnchor<NSLayoutYAxisAnchor>(self, NSLayoutAttributeBottom);
}
- (NSLayoutYAxisAnchor*)centerYAnchor {
    return makeAnchor<NSLayoutYAxisAnchor>(self, NSLayoutAttributeCenterY);
}
- (NSLayoutDimension*)widthAnchor {
    return makeAnchor<NSLayoutDimension>(self, NSLayoutAttributeWidth);
}
- (NSLayoutDimension*)heightAnchor {
    return makeAnchor<NSLayoutDimension>(self, NSLayoutAttributeHeight);
}

@end
