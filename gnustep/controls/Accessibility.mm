#import <AppKit/AppKit.h>

#include "common/RetainPtr.h"
#include "gnustep/runtime/Immortal.h"
#include "gnustep/runtime/SideTable.h"

#include <optional>

namespace {

using veltrix::adoptNS;
using veltrix::RetainPtr;
using veltrix::retainPtr;

struct AccessibilityRow {
    RetainPtr<NSString> label;
    RetainPtr<NSString> help;
    RetainPtr<NSString> identifier;
    RetainPtr<id> titleElement;
    std::optional<bool> isElement;
};

veltrix::gnustep::SideTable<AccessibilityRow>& accessibility() {
    static veltrix::gnustep::Immortal<veltrix::gnustep::SideTable<AccessibilityRow>> table;
    return *table;
}

const AccessibilityRow& rowOf(id object) {
    static const AccessibilityRow empty;
    const AccessibilityRow* const row = accessibility().find(object);
    return row ? *row : empty;
}

}  // namespace

@implementation NSView (AccessibilitySupply)

- (NSString*)accessibilityLabel {
    if (NSString* const given = rowOf(self).label.get())
        return given;
    if (NSButton* const button = veltrix::dynamicCast<NSButton>(self))
        if ([[button title] length] > 0)
            return [button title];
    return [[veltrix::dynamicCast<NSButton>(self) image] accessibilityDescription];
}

- (void)setAccessibilityLabel:(NSString*)label {
    accessibility()[self].label = adoptNS([label copy]);
}

- (NSString*)accessibilityHelp {
    const RetainPtr<NSString>& given = rowOf(self).help;
    return given ? given.get() : [self toolTip];
}

- (void)setAccessibilityHelp:(NSString*)help {
    accessibility()[self].help = adoptNS([help copy]);
}

- (NSString*)accessibilityIdentifier {
    const RetainPtr<NSString>& given = rowOf(self).identifier;
    return given ? given.get() : [self identifier];
}

- (void)setAccessibilityIdentifier:(NSString*)identifier {
    accessibility()[self].identifier = adoptNS([identifier copy]);
}

- (id)accessibilityTitleUIElement {
    return rowOf(self).titleElement.get();
}

- (void)setAccessibilityTitleUIElement:(id)element {
    accessibility()[self].titleElement = retainPtr(element);
}

- (BOOL)isAccessibilityElement {
    return rowOf(self).isElement.value_or([self isKindOfClass:[NSControl class]]);
}

- (void)setAccessibilityElement:(BOOL)isElement {
    accessibility()[self].isElement = isElement;
}

@end

@implementation NSWindow (AccessibilitySupply)

- (NSString*)accessibilityLabel {
    const RetainPtr<NSString>& given = rowOf(self).label;
    return given ? given.get() : [self title];
}

- (void)setAccessibilityLabel:(NSString*)label {
    accessibility()[self].label = adoptNS([label copy]);
}

@end

// Takes the place of the library's, which does nothing.
void NSAccessibilityPostNotificationWithUserInfo(id element, NSString* notification,
                                                 NSDictionary* userInfo) {
    [[NSNotificationCenter defaultCenter] postNotificationName:notification
                                                        object:element
                                                      userInfo:userInfo];
}
