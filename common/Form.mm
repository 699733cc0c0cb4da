#include "common/Form.h"

#include "common/RetainPtr.h"
#include "common/Text.h"

namespace veltrix {
namespace {

// Below what labels and buttons have, so that a field takes a row's spare width.
constexpr float kFieldHugging = 250;

constexpr CGFloat kFileRowSpacing = 8;

NSStackView* makeStack(NSUserInterfaceLayoutOrientation orientation, CGFloat spacing) {
    NSStackView* const stack = adoptNS([[NSStackView alloc] init]).autorelease();
    [stack setOrientation:orientation];
    [stack setSpacing:spacing];
    [stack setTranslatesAutoresizingMaskIntoConstraints:NO];
    return stack;
}

// Adds the label. The field under it is one line that scrolls: a path is longer than any window.
void name(Form& form, std::string_view label, NSTextField* field) {
    [form.stack addArrangedSubview:makeLabel(label)];
    [[field cell] setUsesSingleLineMode:YES];
    [[field cell] setScrollable:YES];
    [field setAccessibilityLabel:toNSString(label)];
}

}  // namespace

NSTextField* makeLabel(std::string_view text) {
    return [NSTextField labelWithString:toNSString(text)];
}

NSButton* makeButton(std::string_view title, std::string_view identifier, id target, SEL action) {
    NSButton* const button = [NSButton buttonWithTitle:toNSString(title)
                                                target:target
                                                action:action];
    [button setIdentifier:toNSString(identifier)];
    return button;
}

NSStackView* makeRow(CGFloat spacing) {
    return makeStack(NSUserInterfaceLayoutOrientationHorizontal, spacing);
}

Form makeForm(NSView* document, CGFloat spacing, CGFloat inset) {
    NSScrollView* const scrollView = adoptNS([[NSScrollView alloc] init]).autorelease();
    [scrollView setHasVerticalScroller:YES];
    [scrollView setHasHorizontalScroller:NO];
    [scrollView setAutohidesScrollers:YES];
    [scrollView setDrawsBackground:NO];
    [document setTranslatesAutoresizingMaskIntoConstraints:NO];
    [scrollView setDocumentView:document];

    NSStackView* const stack = makeStack(NSUserInterfaceLayoutOrientationVertical, spacing);
    [stack setAlignment:NSLayoutAttributeLeading];
    [document addSubview:stack];
    NSView* const visible = [scrollView contentView];
    [NSLayoutConstraint activateConstraints:@[
        [[document widthAnchor] constraintEqualToAnchor:[visible widthAnchor]],
        [[document heightAnchor] constraintGreaterThanOrEqualToAnchor:[visible heightAnchor]],
        [[stack leadingAnchor] constraintEqualToAnchor:[document leadingAnchor] constant:inset],
        [[stack trailingAnchor] constraintEqualToAnchor:[document trailingAnchor] constant:-inset],
        [[stack topAnchor] constraintEqualToAnchor:[document topAnchor] constant:inset],
        [[stack bottomAnchor] constraintEqualToAnchor:[document bottomAnchor] constant:-inset],
    ]];
    return {scrollView, stack, {}};
}

void addFullWidth(Form& form, NSView* view) {
    [form.stack addArrangedSubview:view];
    [[[view widthAnchor] constraintEqualToAnchor:[form.stack widthAnchor]] setActive:YES];
}

void addControl(Form& form, NSStackView* place, NSControl* control) {
    [place addArrangedSubview:control];
    form.controls.emplace_back(control);
}

void addField(Form& form, std::string_view label, NSTextField* field) {
    name(form, label, field);
    addFullWidth(form, field);
    form.controls.emplace_back(field);
}

void addFileRow(Form& form, std::string_view label, NSTextField* field, std::string_view identifier,
                id target, SEL action) {
    name(form, label, field);
    [field setContentHuggingPriority:kFieldHugging
                      forOrientation:NSLayoutConstraintOrientationHorizontal];
    NSStackView* const row = makeRow(kFileRowSpacing);
    addControl(form, row, field);
    addControl(form, row, makeButton("Choose...", identifier, target, action));
    addFullWidth(form, row);
}

std::string typedText(NSTextField* field) {
    [field validateEditing];
    return toUtf8([field stringValue]);
}

void chainKeyViews(NSWindow* window, std::span<NSView* const> views) {
    for (std::size_t i = 0; i < views.size(); ++i) {
        [views[i] setNextKeyView:views[(i + 1) % views.size()]];
    }
    [window setInitialFirstResponder:views.front()];
}

}  // namespace veltrix
