#include "setup/SetupForm.h"

#include "common/Form.h"
#include "common/Text.h"
#include "setup/SetupActions.h"
#import "setup/SetupWindow.h"

#include <algorithm>

namespace veltrix {
namespace {

constexpr std::string_view kTitle = "TLS and Account Setup";
constexpr NSSize kContentSize = {710, 730};
constexpr NSSize kMinimumSize = {640, 520};
constexpr CGFloat kStackSpacing = 12;
constexpr CGFloat kInset = 20;
constexpr CGFloat kButtonSpacing = 8;

RetainPtr<NSWindow> makeWindow() {
    RetainPtr<NSWindow> window = adoptNS([[NSWindow alloc]
        initWithContentRect:NSMakeRect(0, 0, kContentSize.width, kContentSize.height)
                  styleMask:NSWindowStyleMaskTitled | NSWindowStyleMaskClosable |
                            NSWindowStyleMaskResizable
                    backing:NSBackingStoreBuffered
                      defer:NO]);
    [window setTitle:toNSString(kTitle)];
    [window setReleasedWhenClosed:NO];
    [window setMinSize:kMinimumSize];
    return window;
}

Form addForm(NSWindow* window) {
    const RetainPtr<NSView> document = adoptNS([[NSView alloc] init]);
    Form form = makeForm(document, kStackSpacing, kInset);
    NSView* const content = [window contentView];
    [form.scrollView setTranslatesAutoresizingMaskIntoConstraints:NO];
    [content addSubview:form.scrollView];
    [NSLayoutConstraint activateConstraints:@[
        [[form.scrollView leadingAnchor] constraintEqualToAnchor:[content leadingAnchor]],
        [[form.scrollView trailingAnchor] constraintEqualToAnchor:[content trailingAnchor]],
        [[form.scrollView topAnchor] constraintEqualToAnchor:[content topAnchor]],
        [[form.scrollView bottomAnchor] constraintEqualToAnchor:[content bottomAnchor]],
    ]];
    return form;
}

void addActions(Form& form, id target) {
    for (const auto& entries : kSetupButtonRows) {
        NSStackView* const row = makeRow(kButtonSpacing);
        for (const SetupButton& entry : entries) {
            NSButton* const button =
                makeButton(entry.title, entry.action, target, @selector(performSetupAction:));
            addControl(form, row, button);
        }
        [form.stack addArrangedSubview:row];
    }
}

// An unflipped view's top is its far end.
void showTop(NSScrollView* scrollView) {
    NSView* const document = [scrollView documentView];
    [[[scrollView window] contentView] layoutSubtreeIfNeeded];
    [document scrollPoint:NSMakePoint(0, NSMaxY([document bounds]))];
}

}  // namespace

NSButton* makeCheckBox(std::string_view title) {
    return [NSButton checkboxWithTitle:toNSString(title) target:nil action:nullptr];
}

SetupFormLayout makeSetupWindow(const SetupFields& fields, const std::string& origin, id target) {
    const RetainPtr<NSWindow> window = makeWindow();
    Form form = addForm(window);
    const SEL choose = @selector(choose:);
    addFullWidth(form, [NSTextField wrappingLabelWithString:toNSString(origin)]);
    addFileRow(form, "Certificate chain (PEM)", fields.certificate, "cert", target, choose);
    addFileRow(form, "Private key (PEM)", fields.key, "key", target, choose);
    addFileRow(form, "Optional local CA (PEM)", fields.ca, "ca", target, choose);
    addControl(form, form.stack, fields.trustCA);
    addField(form, "DVR username", fields.username);
    addField(form, "DVR password (15-128 bytes)", fields.password);
    addControl(form, form.stack, fields.trustProxy);
    addActions(form, target);
    // Usable while a request runs, so it is not locked with the others.
    NSButton* const manage = [NSButton buttonWithTitle:@"Manage Account"
                                                target:target
                                                action:@selector(manage)];
    [form.stack addArrangedSubview:manage];
    addFullWidth(form, fields.status);

    std::vector<NSView*> order(form.controls.begin(), form.controls.end());
    order.push_back(manage);
    chainKeyViews(window, order);
    [window center];
    showTop(form.scrollView);
    return {window, std::move(form.controls)};
}

}  // namespace veltrix
