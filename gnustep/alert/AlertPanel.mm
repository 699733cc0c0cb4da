#include "gnustep/alert/AlertPanel.h"

#include "common/RetainPtr.h"

using veltrix::adoptNS;
using veltrix::RetainPtr;

namespace {

constexpr CGFloat kContentWidth = 420;
constexpr CGFloat kMargin = 24;
constexpr CGFloat kLeastButtonWidth = 88;

NSTextField* makeText(NSString* string, NSFont* font) {
    NSTextField* const label = [NSTextField wrappingLabelWithString:string];
    [label setFont:font];
    [label setSelectable:NO];
    return label;
}

// From right to left in the order in which they were added.
NSStackView* makeButtonRow(NSArray* buttons) {
    RetainPtr<NSStackView> row = adoptNS([[NSStackView alloc] initWithFrame:NSZeroRect]);
    [row setTranslatesAutoresizingMaskIntoConstraints:NO];
    [row setSpacing:10];
    for (NSButton* button in buttons) {
        [row insertArrangedSubview:button atIndex:0];
        [[[button widthAnchor] constraintGreaterThanOrEqualToConstant:kLeastButtonWidth]
            setActive:YES];
    }
    return row.autorelease();
}

}  // namespace

@implementation VeltrixAlertPanel

- (instancetype)initWithMessage:(NSString*)message text:(NSString*)text buttons:(NSArray*)buttons {
    self = [super initWithContentRect:NSMakeRect(0, 0, kContentWidth, 100)
                            styleMask:NSWindowStyleMaskTitled
                              backing:NSBackingStoreBuffered
                                defer:NO];
    if (!self)
        return nil;
    [self setReleasedWhenClosed:NO];
    [self setHidesOnDeactivate:NO];
    [self setLevel:NSModalPanelWindowLevel];
    [self setTitle:[[NSProcessInfo processInfo] processName]];

    NSView* const content = [self contentView];
    NSTextField* const headline = makeText(message, [NSFont boldSystemFontOfSize:15]);
    NSTextField* const body = makeText(text, [NSFont systemFontOfSize:13]);
    [body setHidden:[text length] == 0];
    NSStackView* const column = [NSStackView stackViewWithViews:@[ headline, body ]];
    NSStackView* const row = makeButtonRow(buttons);
    [column setOrientation:NSUserInterfaceLayoutOrientationVertical];
    [column setAlignment:NSLayoutAttributeTrailing];
    [column setSpacing:10];
    [column addArrangedSubview:row];
    [column setCustomSpacing:20 afterView:[body isHidden] ? headline : body];
    [content addSubview:column];
    [NSLayoutConstraint activateConstraints:@[
        [[headline widthAnchor] constraintEqualToAnchor:[column widthAnchor]],
        [[body widthAnchor] constraintEqualToAnchor:[column widthAnchor]],
        [[column widthAnchor] constraintEqualToConstant:kContentWidth - 2 * kMargin],
        [[column leadingAnchor] constraintEqualToAnchor:[content leadingAnchor] constant:kMargin],
        [[column topAnchor] constraintEqualToAnchor:[content topAnchor] constant:kMargin],
    ]];
    [self setContentSize:NSMakeSize(kContentWidth, [column fittingSize].height + 2 * kMargin)];
    [content layoutSubtreeIfNeeded];

    _buttons = buttons;
    for (NSButton* button in buttons) {
        [button setTarget:self];
        [button setAction:@selector(answer:)];
    }
    if ([buttons count] > 0)
        [self makeFirstResponder:[buttons objectAtIndex:0]];
    [self center];
    return self;
}

- (void)answer:(NSButton*)button {
    [NSApp stopModalWithCode:[button tag]];
}

// Escape is for the button that cancels, and for nothing if there is none.
- (void)keyDown:(NSEvent*)event {
    NSString* const characters = [event charactersIgnoringModifiers];
    if ([characters length] != 1 || [characters characterAtIndex:0] != 0x1b)
        return;
    for (NSButton* button in _buttons)
        if ([[button title] isEqualToString:@"Cancel"])
            [button performClick:self];
}

@end
