// NSStackView: a row or a column of views. In a row spare width goes to the arranged view with the
// lowest content hugging priority, and a shortage is taken from the one with the lowest compression
// resistance; in a column spare height stays at the end. Hidden views take no part.
#pragma once

#import <AppKitSupply/Layout.h>

#include <memory>

namespace veltrix::gnustep {
struct StackState;
}

typedef NS_ENUM(NSInteger, NSStackViewDistribution) {
    NSStackViewDistributionGravityAreas = -1,
    NSStackViewDistributionFill = 0,
};

@interface NSStackView : NSView {
    std::unique_ptr<veltrix::gnustep::StackState> _state;
}
+ (instancetype)stackViewWithViews:(NSArray*)views;

// Horizontal unless set otherwise.
@property NSUserInterfaceLayoutOrientation orientation;

// Across the direction of the stack: NSLayoutAttributeLeading, CenterX, Trailing or Width in a
// column, Top, CenterY, Bottom or Height in a row. Centred unless set otherwise.
@property NSLayoutAttribute alignment;

// Gravity areas unless set otherwise, of which only the first is used: spare width then stays at
// the end of a row when every arranged view hugs its content more than the stack view does.
@property NSStackViewDistribution distribution;

@property CGFloat spacing;  // 8 points unless set otherwise
@property NSEdgeInsets edgeInsets;

@property (readonly, copy) NSArray* arrangedSubviews;
- (void)addArrangedSubview:(NSView*)view;
- (void)insertArrangedSubview:(NSView*)view atIndex:(NSInteger)index;
- (void)removeArrangedSubview:(NSView*)view;

- (void)setCustomSpacing:(CGFloat)spacing afterView:(NSView*)view;
- (CGFloat)customSpacingAfterView:(NSView*)view;

- (void)setHuggingPriority:(NSLayoutPriority)priority
            forOrientation:(NSLayoutConstraintOrientation)orientation;
- (NSLayoutPriority)huggingPriorityForOrientation:(NSLayoutConstraintOrientation)orientation;
@end

static const CGFloat NSStackViewSpacingUseDefault = 3.402823466e+38F;
