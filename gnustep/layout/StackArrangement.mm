#include "gnustep/layout/StackArrangement.h"

#include "gnustep/layout/Measure.h"

#include <algorithm>
#include <cmath>

namespace veltrix::gnustep {
namespace {

bool isRow(NSStackView* stack) {
    return [stack orientation] == NSUserInterfaceLayoutOrientationHorizontal;
}

std::vector<NSView*> visibleViews(NSStackView* stack) {
    std::vector<NSView*> views;
    for (NSView* view in [stack arrangedSubviews])
        if (![view isHidden])
            views.push_back(view);
    return views;
}

CGFloat gapAfter(NSStackView* stack, NSView* view) {
    const CGFloat custom = [stack customSpacingAfterView:view];
    return custom == NSStackViewSpacingUseDefault ? [stack spacing] : custom;
}

CGFloat sumOfGaps(NSStackView* stack, const std::vector<NSView*>& views) {
    CGFloat sum = 0;
    for (std::size_t i = 0; i + 1 < views.size(); ++i)
        sum += gapAfter(stack, views[i]);
    return sum;
}

CGFloat insetsAcross(NSStackView* stack) {
    return [stack edgeInsets].left + [stack edgeInsets].right;
}

NSLayoutPriority hugging(NSView* view) {
    return [view contentHuggingPriorityForOrientation:NSLayoutConstraintOrientationHorizontal];
}

NSLayoutPriority resistance(NSView* view) {
    return [view
        contentCompressionResistancePriorityForOrientation:NSLayoutConstraintOrientationHorizontal];
}

void takeSpareWidth(NSStackView* stack, const std::vector<NSView*>& views,
                    std::vector<CGFloat>& widths, CGFloat spare) {
    const auto loosest = std::min_element(
        views.begin(), views.end(), [](NSView* a, NSView* b) { return hugging(a) < hugging(b); });
    // In gravity areas the stack view itself may be looser than everything in it; then the room
    // stays at its end.
    const bool stretches =
        [stack distribution] == NSStackViewDistributionFill ||
        hugging(*loosest) <=
            [stack huggingPriorityForOrientation:NSLayoutConstraintOrientationHorizontal];
    if (stretches)
        widths[static_cast<std::size_t>(loosest - views.begin())] += spare;
}

void giveUpWidth(const std::vector<NSView*>& views, std::vector<CGFloat>& widths, CGFloat missing) {
    std::vector<std::size_t> order(views.size());
    for (std::size_t i = 0; i < order.size(); ++i)
        order[i] = i;
    std::stable_sort(order.begin(), order.end(), [&views](std::size_t a, std::size_t b) {
        return resistance(views[a]) < resistance(views[b]);
    });
    for (const std::size_t i : order) {
        const CGFloat given = std::min(widths[i], missing);
        widths[i] -= given;
        missing -= given;
    }
}

std::vector<CGFloat> rowWidths(NSStackView* stack, const std::vector<NSView*>& views,
                               CGFloat width) {
    std::vector<CGFloat> widths;
    CGFloat used = insetsAcross(stack) + sumOfGaps(stack, views);
    for (NSView* view : views) {
        widths.push_back(preferredWidth(view, kUnbounded));
        used += widths.back();
    }
    if (views.empty())
        return widths;
    if (used < width)
        takeSpareWidth(stack, views, widths, width - used);
    else
        giveUpWidth(views, widths, used - width);
    return widths;
}

CGFloat columnWidth(NSStackView* stack, NSView* view, CGFloat width) {
    const CGFloat available = width - insetsAcross(stack);
    return [stack alignment] == NSLayoutAttributeWidth ? available
                                                       : preferredWidth(view, available);
}

CGFloat alignedOffset(NSLayoutAttribute alignment, CGFloat room) {
    switch (alignment) {
    case NSLayoutAttributeTrailing:
    case NSLayoutAttributeRight:
    case NSLayoutAttributeBottom:
        return room;
    case NSLayoutAttributeCenterX:
    case NSLayoutAttributeCenterY:
        return std::floor(room / 2);
    default:
        return 0;
    }
}

std::vector<ArrangedFrame> arrangeRow(NSStackView* stack, NSSize size) {
    const NSEdgeInsets insets = [stack edgeInsets];
    const CGFloat room = size.height - insets.top - insets.bottom;
    const std::vector<NSView*> views = visibleViews(stack);
    const std::vector<CGFloat> widths = rowWidths(stack, views, size.width);
    std::vector<ArrangedFrame> frames;
    CGFloat x = insets.left;
    for (std::size_t i = 0; i < views.size(); ++i) {
        const CGFloat height = [stack alignment] == NSLayoutAttributeHeight
                                   ? room
                                   : heightAtWidth(views[i], widths[i]);
        const CGFloat y = insets.top + alignedOffset([stack alignment], room - height);
        frames.push_back({views[i], NSMakeRect(x, y, widths[i], height)});
        x += widths[i] + gapAfter(stack, views[i]);
    }
    return frames;
}

std::vector<ArrangedFrame> arrangeColumn(NSStackView* stack, NSSize size) {
    const NSEdgeInsets insets = [stack edgeInsets];
    const CGFloat room = size.width - insets.left - insets.right;
    std::vector<ArrangedFrame> frames;
    CGFloat y = insets.top;
    for (NSView* view : visibleViews(stack)) {
        const CGFloat width = columnWidth(stack, view, size.width);
        const CGFloat height = heightAtWidth(view, width);
        const CGFloat x = insets.left + alignedOffset([stack alignment], room - width);
        frames.push_back({view, NSMakeRect(x, y, width, height)});
        y += height + gapAfter(stack, view);
    }
    return frames;
}

}  // namespace

CGFloat naturalStackWidth(NSStackView* stack) {
    const std::vector<NSView*> views = visibleViews(stack);
    CGFloat sum = 0;
    CGFloat largest = 0;
    for (NSView* view : views) {
        const CGFloat width = preferredWidth(view, kUnbounded);
        sum += width;
        largest = std::max(largest, width);
    }
    return insetsAcross(stack) + (isRow(stack) ? sum + sumOfGaps(stack, views) : largest);
}

CGFloat stackHeightAtWidth(NSStackView* stack, CGFloat width) {
    const std::vector<NSView*> views = visibleViews(stack);
    const CGFloat insets = [stack edgeInsets].top + [stack edgeInsets].bottom;
    CGFloat sum = 0;
    CGFloat largest = 0;
    const std::vector<CGFloat> widths =
        isRow(stack) ? rowWidths(stack, views, width) : std::vector<CGFloat>();
    for (std::size_t i = 0; i < views.size(); ++i) {
        const CGFloat height =
            heightAtWidth(views[i], isRow(stack) ? widths[i] : columnWidth(stack, views[i], width));
        sum += height;
        largest = std::max(largest, height);
    }
    return insets + (isRow(stack) ? largest : sum + sumOfGaps(stack, views));
}

std::vector<ArrangedFrame> arrangeStack(NSStackView* stack, NSSize size) {
    return isRow(stack) ? arrangeRow(stack, size) : arrangeColumn(stack, size);
}

}  // namespace veltrix::gnustep
