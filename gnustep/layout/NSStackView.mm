#import <AppKit/AppKit.h>

#include "common/RetainPtr.h"

#include <algorithm>
#include <unordered_map>
#include <vector>

namespace veltrix::gnustep {

struct StackState {
    std::vector<RetainPtr<NSView>> arranged;
    std::unordered_map<NSView*, CGFloat> customSpacings;
    NSUserInterfaceLayoutOrientation orientation = NSUserInterfaceLayoutOrientationHorizontal;
    // Until one is set: centred in either orientation.
    NSLayoutAttribute alignment = NSLayoutAttributeNotAnAttribute;
    NSStackViewDistribution distribution = NSStackViewDistributionGravityAreas;
    CGFloat spacing = 8;
    NSEdgeInsets edgeInsets = NSEdgeInsetsZero;
    NSLayoutPriority hugging[2] = {NSLayoutPriorityDefaultLow, NSLayoutPriorityDefaultLow};
};

}  // namespace veltrix::gnustep

using veltrix::adoptNS;
using veltrix::retainPtr;
using veltrix::RetainPtr;
using veltrix::gnustep::StackState;

@implementation NSStackView

+ (instancetype)stackViewWithViews:(NSArray*)views {
    RetainPtr<NSStackView> stack = adoptNS([[self alloc] initWithFrame:NSZeroRect]);
    [stack setTranslatesAutoresizingMaskIntoConstraints:NO];
    for (NSView* view in views)
        [stack addArrangedSubview:view];
    return stack.autorelease();
}

- (instancetype)initWithFrame:(NSRect)frame {
    self = [super initWithFrame:frame];
    if (self)
        _state = std::make_unique<StackState>();
    return self;
}

- (BOOL)isFlipped {
    return YES;
}

- (NSUserInterfaceLayoutOrientation)orientation {
    return _state->orientation;
}

- (void)setOrientation:(NSUserInterfaceLayoutOrientation)orientation {
    _state->orientation = orientation;
    [self setNeedsLayout:YES];
}

- (NSLayoutAttribute)alignment {
    if (_state->alignment != NSLayoutAttributeNotAnAttribute)
        return _state->alignment;
    return _state->orientation == NSUserInterfaceLayoutOrientationHorizontal
               ? NSLayoutAttributeCenterY
               : NSLayoutAttributeCenterX;
}

- (void)setAlignment:(NSLayoutAttribute)alignment {
    if (alignment == NSLayoutAttributeFirstBaseline || alignment == NSLayoutAttributeLastBaseline)
        [NSException raise:NSInvalidArgumentException
                    format:@"A stack view cannot align baselines here"];
    _state->alignment = alignment;
    [self setNeedsLayout:YES];
}

- (NSStackViewDistribution)distribution {
    return _state->distribution;
}

- (void)setDistribution:(NSStackViewDistribution)distribution {
    _state->distribution = distribution;
    [self setNeedsLayout:YES];
}

- (CGFloat)spacing {
    return _state->spacing;
}

- (void)setSpacing:(CGFloat)spacing {
    _state->spacing = spacing;
    [self setNeedsLayout:YES];
}

- (NSEdgeInsets)edgeInsets {
    return _state->edgeInsets;
}

- (void)setEdgeInsets:(NSEdgeInsets)insets {
    _state->edgeInsets = insets;
    [self setNeedsLayout:YES];
}

- (NSArray*)arrangedSubviews {
    NSMutableArray* const views = [NSMutableArray array];
    for (const RetainPtr<NSView>& view : _state->arranged)
        [views addObject:view];
    return views;
}

- (void)addArrangedSubview:(NSView*)view {
    [self insertArrangedSubview:view atIndex:(NSInteger)_state->arranged.size()];
}

- (void)insertArrangedSubview:(NSView*)view atIndex:(NSInteger)index {
    const RetainPtr<NSView> held = retainPtr(view);
    [self removeArrangedSubview:view];
    const auto end = (NSInteger)_state->arranged.size();
    _state->arranged.insert(_state->arranged.begin() + std::min(index, end), held);
    [view setTranslatesAutoresizingMaskIntoConstraints:NO];
    if ([view superview] != self)
        [self addSubview:view];
    [self setNeedsLayout:YES];
}

- (void)removeArrangedSubview:(NSView*)view {
    std::erase_if(_state->arranged,
                  [view](const RetainPtr<NSView>& arranged) { return arranged == view; });
    _state->customSpacings.erase(view);
    [self setNeedsLayout:YES];
}

// A subview that is taken away is no longer arranged either, as on macOS.
- (void)willRemoveSubview:(NSView*)view {
    [super willRemoveSubview:view];
    if (_state)
        [self removeArrangedSubview:view];
}

- (void)setCustomSpacing:(CGFloat)spacing afterView:(NSView*)view {
    _state->customSpacings[view] = spacing;
    [self setNeedsLayout:YES];
}

- (CGFloat)customSpacingAfterView:(NSView*)view {
    const auto found = _state->customSpacings.find(view);
    return found == _state->customSpacings.end() ? NSStackViewSpacingUseDefault : found->second;
}

- (void)setHuggingPriority:(NSLayoutPriority)priority
            forOrientation:(NSLayoutConstraintOrientation)orientation {
    _state->hugging[orientation] = priority;
    [self setNeedsLayout:YES];
}

- (NSLayoutPriority)huggingPriorityForOrientation:(NSLayoutConstraintOrientation)orientation {
    return _state->hugging[orientation];
}

@end
