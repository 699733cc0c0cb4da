// The building blocks of both windows: a scrolling form of one vertical stack, its labels, its
// fields and its rows. Everything returned is autoreleased and owned by the view it is put into.
// Main thread only.
#pragma once

#include "common/RetainPtr.h"

#import <AppKit/AppKit.h>

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace veltrix {

// A label's or button's text.
[[nodiscard]] NSTextField* makeLabel(std::string_view text);
[[nodiscard]] NSButton* makeButton(std::string_view title, std::string_view identifier, id target,
                                   SEL action);

// A horizontal row of controls.
[[nodiscard]] NSStackView* makeRow(CGFloat spacing);

// A document shown in a scroll view that scrolls vertically only, with a vertical stack inside it
// that holds the form, and those of its controls that are locked together.
struct Form {
    NSScrollView* scrollView;
    NSStackView* stack;
    std::vector<RetainPtr<NSControl>> controls;
};

// The stack is inset on all sides. The document is as wide as the visible part and at least as
// high.
[[nodiscard]] Form makeForm(NSView* document, CGFloat spacing, CGFloat inset);

// Adds the view, as wide as the stack.
void addFullWidth(Form& form, NSView* view);

// Adds a control that is locked with the others to the stack, or to one of its rows.
void addControl(Form& form, NSStackView* place, NSControl* control);

// Adds a label and, below it, the field that it names, for assistive technology too.
void addField(Form& form, std::string_view label, NSTextField* field);

// The same with a "Choose..." button of the given identifier and action behind the field, which
// takes the spare width.
void addFileRow(Form& form, std::string_view label, NSTextField* field, std::string_view identifier,
                id target, SEL action);

// The field's text. What is typed counts at once, also while the field is still being edited.
[[nodiscard]] std::string typedText(NSTextField* field);

// Tab walks the views in this order and then starts again; the first one has the focus at first.
void chainKeyViews(NSWindow* window, std::span<NSView* const> views);

}  // namespace veltrix
