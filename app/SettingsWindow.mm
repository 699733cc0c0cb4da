#include "app/SettingsWindow.h"

#include "app/CommandSurface.h"
#import "app/DesktopApp.h"
#import "app/SettingsDocumentView.h"
#include "app/ShellText.h"
#include "common/Form.h"
#include "common/Text.h"

#include <algorithm>
#include <string_view>

namespace veltrix {
namespace {

constexpr NSSize kContentSize = {760, 640};
constexpr NSSize kMinimumContentSize = {720, 440};
constexpr CGFloat kStackSpacing = 16;
constexpr CGFloat kInset = 24;
constexpr CGFloat kNavigationSpacing = 12;
constexpr CGFloat kActionSpacing = 10;
constexpr CGFloat kTitleSize = 22;

RetainPtr<NSWindow> makeWindow() {
    RetainPtr<NSWindow> window = adoptNS([[NSWindow alloc]
        initWithContentRect:NSMakeRect(0, 0, kContentSize.width, kContentSize.height)
                  styleMask:NSWindowStyleMaskTitled | NSWindowStyleMaskClosable |
                            NSWindowStyleMaskMiniaturizable | NSWindowStyleMaskResizable
                    backing:NSBackingStoreBuffered
                      defer:NO]);
    [window setTitle:toNSString(kProductName)];
    [window setReleasedWhenClosed:NO];
    [window setContentMinSize:kMinimumContentSize];
    return window;
}

Form addForm(NSWindow* window) {
    const RetainPtr<SettingsDocumentView> document = adoptNS([[SettingsDocumentView alloc] init]);
    Form form = makeForm(document, kStackSpacing, kInset);
    [form.scrollView setFrame:[[window contentView] bounds]];
    [form.scrollView setAutoresizingMask:NSViewWidthSizable | NSViewHeightSizable];
    [[window contentView] addSubview:form.scrollView];
    return form;
}

void addTitle(Form& form) {
    NSTextField* const title = makeLabel(kProductName);
    [title setFont:[NSFont systemFontOfSize:kTitleSize weight:NSFontWeightSemibold]];
    [form.stack addArrangedSubview:title];
}

void addNavigation(Form& form, id target) {
    NSStackView* const row = makeRow(kNavigationSpacing);
    for (const CommandImageButton& entry : kNavigationButtons) {
        NSButton* const button =
            makeButton(entry.title, entry.word, target, @selector(buttonCommand:));
        [button setImage:[NSImage imageWithSystemSymbolName:toNSString(entry.symbol)
                                   accessibilityDescription:toNSString(entry.title)]];
        [button setImagePosition:NSImageLeading];
        [button setBezelStyle:NSBezelStyleRounded];
        [button setAccessibilityLabel:toNSString(entry.title)];
        addControl(form, row, button);
    }
    [form.stack addArrangedSubview:row];
}

void addActions(Form& form, id target) {
    NSStackView* const row = makeRow(kActionSpacing);
    for (const CommandItem& entry : kActionButtons) {
        NSButton* const button =
            makeButton(entry.title, entry.word, target, @selector(buttonCommand:));
        addControl(form, row, button);
    }
    [form.stack addArrangedSubview:row];
}

}  // namespace

SettingsWindow makeSettingsWindow(const SettingsFields& fields, id target) {
    const RetainPtr<NSWindow> window = makeWindow();
    Form form = addForm(window);
    const SEL choose = @selector(choose:);
    addTitle(form);
    addNavigation(form, target);
    addFileRow(form, "Installation folder", fields.home, "home", target, choose);
    addFileRow(form, "Node executable", fields.node, "node", target, choose);
    addFileRow(form, "Recording storage (first install)", fields.storage, "storage", target,
               choose);
    addField(form, "Trusted HTTPS origin (existing TLS proxy)", fields.origin);
    addField(form, "Retention days (first install)", fields.retention);
    addActions(form, target);
    addFullWidth(form, fields.status);

    // Focus begins in the first field; Tab goes on in reading order and comes round to the top.
    std::vector<NSView*> order(form.controls.begin(), form.controls.end());
    std::rotate(order.begin(), order.begin() + kNavigationButtons.size(), order.end());
    chainKeyViews(window, order);
    [window center];
    return {window, std::move(form.controls)};
}

}  // namespace veltrix
