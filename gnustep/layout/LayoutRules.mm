#include "gnustep/layout/LayoutRules.h"

#include "common/RetainPtr.h"
#include "gnustep/runtime/Immortal.h"
#include "gnustep/runtime/SideTable.h"

#include <algorithm>

namespace veltrix::gnustep {
namespace {

struct ActiveConstraint {
    RetainPtr<NSLayoutConstraint> constraint;
    LayoutRule rule;
};

std::vector<ActiveConstraint>& activeConstraints() {
    static Immortal<std::vector<ActiveConstraint>> all;
    return *all;
}

// Constraints do not keep their views alive: those of a view go with it.
class RulesOfDeadViews final : public SideTableBase {
  public:
    void forget(id object) override {
        std::vector<ActiveConstraint> dying;
        std::vector<ActiveConstraint>& all = activeConstraints();
        const auto names = [object](const ActiveConstraint& active) {
            return active.rule.view == object || active.rule.reference == object;
        };
        const auto end = std::stable_partition(all.begin(), all.end(), std::not_fn(names));
        std::move(end, all.end(), std::back_inserter(dying));
        all.erase(end, all.end());
    }
};

bool isSize(NSLayoutAttribute attribute) {
    return attribute == NSLayoutAttributeWidth || attribute == NSLayoutAttributeHeight;
}

bool isPosition(NSLayoutAttribute attribute) {
    switch (attribute) {
    case NSLayoutAttributeLeading:
    case NSLayoutAttributeTrailing:
    case NSLayoutAttributeTop:
    case NSLayoutAttributeBottom:
    case NSLayoutAttributeCenterX:
    case NSLayoutAttributeCenterY:
        return true;
    default:
        return false;
    }
}

NSLayoutAttribute leftToRight(NSLayoutAttribute attribute) {
    switch (attribute) {
    case NSLayoutAttributeLeft:
        return NSLayoutAttributeLeading;
    case NSLayoutAttributeRight:
        return NSLayoutAttributeTrailing;
    default:
        return attribute;
    }
}

[[noreturn]] void refuse(NSLayoutConstraint* constraint, NSString* reason) {
    [NSException
         raise:NSInvalidArgumentException
        format:@"Cannot activate a constraint: %@ (%@ attribute %d, relation %d, %@ "
               @"attribute %d, multiplier %g, constant %g)",
               reason, [constraint firstItem], (int)[constraint firstAttribute],
               (int)[constraint relation], [constraint secondItem],
               (int)[constraint secondAttribute], [constraint multiplier], [constraint constant]];
    __builtin_unreachable();
}

LayoutRule positionRule(NSLayoutConstraint* constraint, LayoutRule rule) {
    NSView* const first = [constraint firstItem];
    NSView* const second = [constraint secondItem];
    if ([constraint relation] != NSLayoutRelationEqual || [constraint multiplier] != 1)
        refuse(constraint, @"an edge or a centre can only be equal to another one");
    if (leftToRight([constraint secondAttribute]) != rule.attribute)
        refuse(constraint,
               @"an edge or a centre can only be tied to the same one of the superview");
    if ([first superview] == second)
        return rule;
    if ([second superview] != first)
        refuse(constraint, @"an edge or a centre can only be tied to that of the superview");
    rule.view = second;
    rule.reference = first;
    rule.constant = -rule.constant;
    return rule;
}

LayoutRule sizeRule(NSLayoutConstraint* constraint, const LayoutRule& rule) {
    NSView* const second = [constraint secondItem];
    if (second && [constraint secondAttribute] != rule.attribute)
        refuse(constraint, @"a size can only follow the same size of another view");
    if (second && (second == rule.view || ![rule.view isDescendantOf:second]))
        refuse(constraint, @"a size can only follow that of a view further up");
    return rule;
}

LayoutRule ruleFrom(NSLayoutConstraint* constraint) {
    NSView* const second = [constraint secondItem];
    LayoutRule rule;
    rule.view = [constraint firstItem];
    rule.attribute = leftToRight([constraint firstAttribute]);
    rule.relation = [constraint relation];
    rule.reference = second;
    rule.multiplier = [constraint multiplier];
    rule.constant = [constraint constant];

    if ([constraint priority] != NSLayoutPriorityRequired)
        refuse(constraint, @"only required constraints are supported");
    if (![rule.view isKindOfClass:[NSView class]] ||
        (second && ![second isKindOfClass:[NSView class]]))
        refuse(constraint, @"only views can be tied");
    if (second && ![rule.view ancestorSharedWithView:second])
        refuse(constraint, @"its views have no common ancestor");
    if (isSize(rule.attribute))
        return sizeRule(constraint, rule);
    if (isPosition(rule.attribute) && second)
        return positionRule(constraint, rule);
    refuse(constraint, @"this attribute is not supported");
}

auto find(NSLayoutConstraint* constraint) {
    std::vector<ActiveConstraint>& all = activeConstraints();
    return std::find_if(all.begin(), all.end(), [constraint](const ActiveConstraint& active) {
        return active.constraint == constraint;
    });
}

}  // namespace

void activateConstraint(NSLayoutConstraint* constraint) {
    static Immortal<RulesOfDeadViews> rulesOfDeadViews;
    if (isConstraintActive(constraint))
        return;
    const LayoutRule rule = ruleFrom(constraint);
    activeConstraints().push_back({retainPtr(constraint), rule});
    [rule.view setNeedsLayout:YES];
}

void deactivateConstraint(NSLayoutConstraint* constraint) {
    const auto found = find(constraint);
    if (found == activeConstraints().end())
        return;
    NSView* const view = found->rule.view;
    activeConstraints().erase(found);
    [view setNeedsLayout:YES];
}

bool isConstraintActive(NSLayoutConstraint* constraint) {
    return find(constraint) != activeConstraints().end();
}

void refreshConstraint(NSLayoutConstraint* constraint) {
    const auto found = find(constraint);
    if (found == activeConstraints().end())
        return;
    found->rule = ruleFrom(constraint);
    [found->rule.view setNeedsLayout:YES];
}

std::optional<CGFloat> pinnedOffset(NSView* view, NSLayoutAttribute attribute) {
    for (const auto& [constraint, rule] : activeConstraints())
        if (rule.view == view && rule.attribute == attribute && rule.reference == [view superview])
            return rule.constant;
    return std::nullopt;
}

std::vector<LayoutRule> sizeRules(NSView* view, NSLayoutAttribute attribute) {
    std::vector<LayoutRule> rules;
    for (const auto& [constraint, rule] : activeConstraints())
        if (rule.view == view && rule.attribute == attribute)
            rules.push_back(rule);
    return rules;
}

bool takesPartInRules(NSView* view) {
    const std::vector<ActiveConstraint>& all = activeConstraints();
    return std::any_of(all.begin(), all.end(), [view](const ActiveConstraint& active) {
        return active.rule.view == view || active.rule.reference == view;
    });
}

}  // namespace veltrix::gnustep
