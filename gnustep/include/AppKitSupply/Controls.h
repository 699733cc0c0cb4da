// Convenience constructors and accessors of labels, fields, buttons, images and fonts.
#pragma once

#import <AppKit/NSAlert.h>
#import <AppKit/NSButton.h>
#import <AppKit/NSFont.h>
#import <AppKit/NSImage.h>
#import <AppKit/NSMenuItem.h>
#import <AppKit/NSTextField.h>
#import <AppKit/NSUserInterfaceItemIdentification.h>
#import <AppKit/NSView.h>
#import <AppKit/NSWindow.h>

@interface NSView (IdentifierSupply) <NSUserInterfaceItemIdentification>
@property (copy) NSUserInterfaceItemIdentifier identifier;
@end

@interface NSWindow (IdentifierSupply) <NSUserInterfaceItemIdentification>
@property (copy) NSUserInterfaceItemIdentifier identifier;
@end

@interface NSMenuItem (IdentifierSupply) <NSUserInterfaceItemIdentification>
@property (copy) NSUserInterfaceItemIdentifier identifier;
@end

@interface NSControl (CellAttributeSupply)
@property NSLineBreakMode lineBreakMode;
@property BOOL usesSingleLineMode;
@end

@interface NSTextField (ConvenienceSupply)
+ (instancetype)labelWithString:(NSString*)string;
// Selectable, and as high as its text needs at the width it gets.
+ (instancetype)wrappingLabelWithString:(NSString*)string;
+ (instancetype)textFieldWithString:(NSString*)string;

@property (copy) NSString* placeholderString;
@property CGFloat preferredMaxLayoutWidth;
@end

@interface NSButton (ConvenienceSupply)
+ (instancetype)buttonWithTitle:(NSString*)title target:(id)target action:(SEL)action;
+ (instancetype)buttonWithTitle:(NSString*)title
                          image:(NSImage*)image
                         target:(id)target
                         action:(SEL)action;
+ (instancetype)checkboxWithTitle:(NSString*)title target:(id)target action:(SEL)action;
@end

@interface NSAlert (LayoutSupply)
// Makes the alert's window, which can then be asked for and added to before the alert runs.
- (void)layout;
@end

@interface NSImage (SymbolSupply)
// nil for a symbol that is not among those drawn here, as for one that macOS does not know.
+ (NSImage*)imageWithSystemSymbolName:(NSString*)name
             accessibilityDescription:(NSString*)description;
@property (copy) NSString* accessibilityDescription;
@end

@interface NSFont (WeightSupply)
+ (NSFont*)systemFontOfSize:(CGFloat)size weight:(NSFontWeight)weight;
@end
