#import "app/SettingsDocumentView.h"

@implementation SettingsDocumentView

- (instancetype)initWithFrame:(NSRect)frame {
    return [super initWithFrame:frame];
}

- (instancetype)initWithCoder:(NSCoder*)coder {
    return [super initWithCoder:coder];
}

- (BOOL)isFlipped {
    return YES;
}

@end
