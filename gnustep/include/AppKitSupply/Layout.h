// Constraints, anchors and content sizes. GNUstep has the classes of Auto Layout as hollow records;
// behind these declarations stands a small top-down layout in place of a general solver. It takes
//
//   - an edge (or centre) of a view equal to the same edge of its superview, plus a constant;
//   - a width or height equal to, at least or at most a constant;
//   - a width or height equal to, at least or at most that of a view above it, times a multiplier,
//     plus a constant
//
// and raises NSInvalidArgumentException for any other constraint when it is activated: loudly,
// because the alternative is a wrong picture. What no constraint says follows from the content.
// Priorities other than NSLayoutPriorityRequired are among what is not supported.
#pragma once

#import <AppKit/NSLayoutAnchor.h>
#import <AppKit/NSLayoutConstraint.h>
#import <AppKit/NSView.h>
#import <AppKit/NSWindow.h>

static const CGFloat NSViewNoIntrinsicMetric = -1;

@interface NSView (LayoutSupply)
// The view is laid out by constraints once this is NO, by its frame and autoresizing mask while it
// is YES.
@property BOOL translatesAutoresizingMaskIntoConstraints;

@property (readonly) NSSize intrinsicContentSize;
@property (readonly) NSSize fittingSize;
- (void)invalidateIntrinsicContentSize;

- (NSLayoutPriority)contentHuggingPriorityForOrientation:(NSLayoutConstraintOrientation)orientation;
- (void)setContentHuggingPriority:(NSLayoutPriority)priority
                   forOrientation:(NSLayoutConstraintOrientation)orientation;
- (NSLayoutPriority)contentCompressionResistancePriorityForOrientation:
    (NSLayoutConstraintOrientation)orientation;
- (void)setContentCompressionResistancePriority:(NSLayoutPriority)priority
                                 forOrientation:(NSLayoutConstraintOrientation)orientation;

@property BOOL needsLayout;
- (void)layoutSubtreeIfNeeded;
@end

@interface NSView (AnchorSupply)
@property (readonly, retain) NSLayoutXAxisAnchor* leadingAnchor;
@property (readonly, retain) NSLayoutXAxisAnchor* trailingAnchor;
@property (readonly, retain) NSLayoutXAxisAnchor* leftAnchor;
@property (readonly, retain) NSLayoutXAxisAnchor* rightAnchor;
@property (readonly, retain) NSLayoutXAxisAnchor* centerXAnchor;
@property (readonly, retain) NSLayoutYAxisAnchor* topAnchor;
@property (readonly, retain) NSLayoutYAxisAnchor* bottomAnchor;
@property (readonly, retain) NSLayoutYAxisAnchor* centerYAnchor;
@property (readonly, retain) NSLayoutDimension* widthAnchor;
@property (readonly, retain) NSLayoutDimension* heightAnchor;
@end

@interface NSWindow (LayoutSupply)
- (void)layoutIfNeeded;
@end

@interface NSLayoutConstraint (LayoutSupply)
- (void)setPriority:(NSLayoutPriority)priority;
- (void)setConstant:(CGFloat)constant;
@end
