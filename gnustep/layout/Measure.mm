#include "gnustep/layout/Measure.h"

#include "common/RetainPtr.h"
#include "gnustep/layout/LayoutRules.h"
#include "gnustep/layout/StackArrangement.h"
#include "gnustep/runtime/Immortal.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <optional>

namespace veltrix::gnustep {
namespace {

struct Measured {
    RetainPtr<NSView> view;  // so that no other comes to lie where it was
    NSSize size;
};
using MeasuredViews = std::map<NSView*, Measured>;
std::optional<MeasuredViews>& measuredViews() {
    static Immortal<std::optional<MeasuredViews>> all;
    return *all;
}

NSSize sizeOfContent(NSView* view) {
    std::optional<MeasuredViews>& measured = measuredViews();
    if (!measured)
        return [view intrinsicContentSize];
    const auto found = measured->find(view);
    if (found != measured->end())
        return found->second.size;
    const NSSize size = [view intrinsicContentSize];
    measured->insert({view, {retainPtr(view), size}});
    return size;
}

// While a height is asked for at some width, views inside may follow that width, which the view
// does not have yet.
struct AssumedWidth {
    NSView* view;
    CGFloat width;
};
std::vector<AssumedWidth>& assumedWidths() {
    static Immortal<std::vector<AssumedWidth>> all;
    return *all;
}

class Assumption {
  public:
    Assumption(NSView* view, CGFloat width) { assumedWidths().push_back({view, width}); }
    ~Assumption() { assumedWidths().pop_back(); }
    Assumption(const Assumption&) = delete;
    Assumption& operator=(const Assumption&) = delete;
};

CGFloat sizeOf(NSView* view, NSLayoutAttribute attribute) {
    if (attribute == NSLayoutAttributeHeight)
        return NSHeight([view frame]);
    for (auto assumed = assumedWidths().rbegin(); assumed != assumedWidths().rend(); ++assumed)
        if (assumed->view == view)
            return assumed->width;
    return NSWidth([view frame]);
}

CGFloat demanded(const LayoutRule& rule) {
    const CGFloat base = rule.reference ? sizeOf(rule.reference, rule.attribute) : 0;
    return base * rule.multiplier + rule.constant;
}

// `content` is asked only if no rule fixes the size.
template <typename Content>
CGFloat sizeUnderRules(NSView* view, NSLayoutAttribute attribute, Content content) {
    const std::vector<LayoutRule> rules = sizeRules(view, attribute);
    const auto fixed = std::find_if(rules.begin(), rules.end(), [](const LayoutRule& rule) {
        return rule.relation == NSLayoutRelationEqual;
    });
    CGFloat size = fixed == rules.end() ? content() : demanded(*fixed);
    for (const LayoutRule& rule : rules) {
        if (rule.relation == NSLayoutRelationLessThanOrEqual)
            size = std::min(size, demanded(rule));
        if (rule.relation == NSLayoutRelationGreaterThanOrEqual)
            size = std::max(size, demanded(rule));
    }
    return std::max<CGFloat>(0, std::ceil(size));
}

// What lies between the edges of a view and those of a child pinned to both of them.
std::optional<CGFloat> insetsAround(NSView* child, NSLayoutAttribute near, NSLayoutAttribute far) {
    const std::optional<CGFloat> begin = pinnedOffset(child, near);
    const std::optional<CGFloat> end = pinnedOffset(child, far);
    if (!begin || !end)
        return std::nullopt;
    return *begin - *end;
}

// Of the children that reach from edge to edge; NSViewNoIntrinsicMetric if there is none.
template <typename Size>
CGFloat largestPinnedChild(NSView* view, NSLayoutAttribute near, NSLayoutAttribute far, Size size) {
    CGFloat largest = NSViewNoIntrinsicMetric;
    for (NSView* child in [view subviews])
        if (const auto insets = insetsAround(child, near, far))
            largest = std::max(largest, size(child, *insets) + *insets);
    return largest;
}

CGFloat contentWidth(NSView* view) {
    if ([view isKindOfClass:[NSStackView class]])
        return naturalStackWidth(static_cast<NSStackView*>(view));
    if (const CGFloat own = sizeOfContent(view).width; own != NSViewNoIntrinsicMetric)
        return own;
    const CGFloat children = largestPinnedChild(
        view, NSLayoutAttributeLeading, NSLayoutAttributeTrailing,
        [](NSView* child, CGFloat) { return preferredWidth(child, kUnbounded); });
    if (children != NSViewNoIntrinsicMetric)
        return children;
    return isLaidOutByRules(view) ? NSViewNoIntrinsicMetric : NSWidth([view frame]);
}

CGFloat contentHeight(NSView* view, CGFloat width) {
    if ([view isKindOfClass:[NSStackView class]])
        return stackHeightAtWidth(static_cast<NSStackView*>(view), width);
    if (const CGFloat own = [view contentHeightAtWidth:width]; own != NSViewNoIntrinsicMetric)
        return own;
    if (const CGFloat own = sizeOfContent(view).height; own != NSViewNoIntrinsicMetric)
        return own;
    const CGFloat children = largestPinnedChild(
        view, NSLayoutAttributeTop, NSLayoutAttributeBottom, [width](NSView* child, CGFloat) {
            const auto insets =
                insetsAround(child, NSLayoutAttributeLeading, NSLayoutAttributeTrailing);
            return heightAtWidth(child, insets ? width - *insets : preferredWidth(child, width));
        });
    if (children != NSViewNoIntrinsicMetric)
        return children;
    return isLaidOutByRules(view) ? 0 : NSHeight([view frame]);
}

}  // namespace

MeasuringOnce::MeasuringOnce() {
    measuredViews().emplace();
}

MeasuringOnce::~MeasuringOnce() {
    measuredViews().reset();
}

CGFloat preferredWidth(NSView* view, CGFloat available) {
    return sizeUnderRules(view, NSLayoutAttributeWidth, [view, available] {
        const CGFloat content = contentWidth(view);
        if (content == NSViewNoIntrinsicMetric)
            return available == kUnbounded ? 0 : available;
        return std::min(content, available);
    });
}

CGFloat heightAtWidth(NSView* view, CGFloat width) {
    const Assumption assumption(view, width);
    return sizeUnderRules(view, NSLayoutAttributeHeight,
                          [view, width] { return contentHeight(view, width); });
}

bool isLaidOutByRules(NSView* view) {
    return ![view translatesAutoresizingMaskIntoConstraints];
}

}  // namespace veltrix::gnustep

@implementation NSView (HeightForWidth)
- (CGFloat)contentHeightAtWidth:(CGFloat)width {
    (void)width;
    return NSViewNoIntrinsicMetric;
}
@end
