// What a view knows of its own layout, under Apple's names.
#include "gnustep/layout/LayoutEngine.h"
#include "gnustep/layout/Measure.h"
#include "gnustep/runtime/Immortal.h"
#include "gnustep/runtime/SideTable.h"

#include <optional>

namespace {

using veltrix::gnustep::SideTable;

struct Priorities {
    NSLayoutPriority across;
    NSLayoutPriority down;

    NSLayoutPriority& along(NSLayoutConstraintOrientation orientation) {
        return orientation == NSLayoutConstraintOrientationHorizontal ? across : down;
    }
};

struct LayoutRow {
    bool laidOutByRules = false;
    std::optional<Priorities> hugging;
    std::optional<Priorities> resistance;
};

SideTable<LayoutRow>& layoutRows() {
    static veltrix::gnustep::Immortal<SideTable<LayoutRow>> table;
    return *table;
}

bool isEditableField(NSView* view) {
    return [view isKindOfClass:[NSTextField class]] && [static_cast<NSTextField*>(view) isEditable];
}

// Fields stretch, everything else with content of its own keeps its size.
Priorities defaultHugging(NSView* view) {
    if (![view isKindOfClass:[NSControl class]])
        return {NSLayoutPriorityDefaultLow, NSLayoutPriorityDefaultLow};
    return {isEditableField(view) ? NSLayoutPriorityDefaultLow : NSLayoutPriorityDefaultHigh,
            NSLayoutPriorityDefaultHigh};
}

}  // namespace

@implementation NSView (LayoutSupply)

- (BOOL)translatesAutoresizingMaskIntoConstraints {
    const LayoutRow* const row = layoutRows().find(self);
    return !row || !row->laidOutByRules;
}

- (void)setTranslatesAutoresizingMaskIntoConstraints:(BOOL)translates {
    layoutRows()[self].laidOutByRules = !translates;
    [self setNeedsLayout:YES];
}

- (NSSize)intrinsicContentSize {
    return NSMakeSize(NSViewNoIntrinsicMetric, NSViewNoIntrinsicMetric);
}

- (NSSize)fittingSize {
    const CGFloat width = veltrix::gnustep::preferredWidth(self, veltrix::gnustep::kUnbounded);
    return NSMakeSize(width, veltrix::gnustep::heightAtWidth(self, width));
}

- (void)invalidateIntrinsicContentSize {
    [self setNeedsLayout:YES];
}

- (NSLayoutPriority)contentHuggingPriorityForOrientation:
    (NSLayoutConstraintOrientation)orientation {
    const LayoutRow* const row = layoutRows().find(self);
    Priorities priorities = row && row->hugging ? *row->hugging : defaultHugging(self);
    return priorities.along(orientation);
}

- (void)setContentHuggingPriority:(NSLayoutPriority)priority
                   forOrientation:(NSLayoutConstraintOrientation)orientation {
    std::optional<Priorities>& priorities = layoutRows()[self].hugging;
    if (!priorities)
        priorities = defaultHugging(self);
    priorities->along(orientation) = priority;
    [self setNeedsLayout:YES];
}

- (NSLayoutPriority)contentCompressionResistancePriorityForOrientation:
    (NSLayoutConstraintOrientation)orientation {
    const LayoutRow* const row = layoutRows().find(self);
    if (!row || !row->resistance)
        return NSLayoutPriorityDefaultHigh;
    Priorities priorities = *row->resistance;
    return priorities.along(orientation);
}

- (void)setContentCompressionResistancePriority:(NSLayoutPriority)priority
                                 forOrientation:(NSLayoutConstraintOrientation)orientation {
    std::optional<Priorities>& priorities = layoutRows()[self].resistance;
    if (!priorities)
        priorities = {NSLayoutPriorityDefaultHigh, NSLayoutPriorityDefaultHigh};
    priorities->along(orientation) = priority;
    [self setNeedsLayout:YES];
}

- (BOOL)needsLayout {
    return veltrix::gnustep::isLayoutScheduled(self);
}

- (void)setNeedsLayout:(BOOL)needed {
    if (needed)
        veltrix::gnustep::scheduleLayoutOfTreeOf(self);
}

- (void)layoutSubtreeIfNeeded {
    veltrix::gnustep::layOutTreeOf(self);
}

@end

@implementation NSWindow (LayoutSupply)
- (void)layoutIfNeeded {
    [[self contentView] layoutSubtreeIfNeeded];
}
@end
