// The active constraints in the form the layout reads them. A rule says something about one view;
// which constraint shapes become rules, and that every other one is refused, is written here only.
#pragma once

#import <AppKit/AppKit.h>

#include <optional>
#include <vector>

namespace veltrix::gnustep {

struct LayoutRule {
    NSView* view = nil;
    // Leading stands for left and trailing for right as well: text runs from left to right here.
    NSLayoutAttribute attribute = NSLayoutAttributeNotAnAttribute;
    NSLayoutRelation relation = NSLayoutRelationEqual;
    // The superview of an edge or centre; of a size the view above that it follows, or nil.
    NSView* reference = nil;
    CGFloat multiplier = 1;
    CGFloat constant = 0;
};

// Raises NSInvalidArgumentException for a constraint that is not supported, and, as on macOS, for
// one whose views have no common ancestor. Active constraints are kept alive.
void activateConstraint(NSLayoutConstraint* constraint);
void deactivateConstraint(NSLayoutConstraint* constraint);
bool isConstraintActive(NSLayoutConstraint* constraint);
// Reads an active constraint again after its constant has changed.
void refreshConstraint(NSLayoutConstraint* constraint);

// How far an edge or the centre lies from the superview's, to the right or downwards.
std::optional<CGFloat> pinnedOffset(NSView* view, NSLayoutAttribute attribute);

// What is said of the width or height.
std::vector<LayoutRule> sizeRules(NSView* view, NSLayoutAttribute attribute);

// Whether any rule speaks of the view.
bool takesPartInRules(NSView* view);

}  // namespace veltrix::gnustep
