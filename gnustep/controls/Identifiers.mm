// Interface identifiers, which code gives its views, windows and menu items to tell them apart.
#import <AppKit/AppKit.h>

#include "common/RetainPtr.h"
#include "gnustep/runtime/Immortal.h"
#include "gnustep/runtime/SideTable.h"

namespace {

using veltrix::adoptNS;
using veltrix::RetainPtr;

veltrix::gnustep::SideTable<RetainPtr<NSString>>& identifiers() {
    static veltrix::gnustep::Immortal<veltrix::gnustep::SideTable<RetainPtr<NSString>>> table;
    return *table;
}

NSString* identifierOf(id object) {
    const RetainPtr<NSString>* const identifier = identifiers().find(object);
    return identifier ? identifier->get() : nil;
}

void setIdentifierOf(id object, NSString* identifier) {
    identifiers()[object] = adoptNS([identifier copy]);
}

}  // namespace

@implementation NSView (IdentifierSupply)
- (NSUserInterfaceItemIdentifier)identifier {
    return identifierOf(self);
}
- (void)setIdentifier:(NSUserInterfaceItemIdentifier)identifier {
    setIdentifierOf(self, identifier);
}
@end

@implementation NSWindow (IdentifierSupply)
- (NSUserInterfaceItemIdentifier)identifier {
    return identifierOf(self);
}
- (void)setIdentifier:(NSUserInterfaceItemIdentifier)identifier {
    setIdentifierOf(self, identifier);
}
@end

@implementation NSMenuItem (IdentifierSupply)
- (NSUserInterfaceItemIdentifier)identifier {
    return identifierOf(self);
}
- (void)setIdentifier:(NSUserInterfaceItemIdentifier)identifier {
    setIdentifierOf(self, identifier);
}
@end
