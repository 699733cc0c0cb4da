#include "gnustep/controls/PaintedImage.h"

@interface VeltrixPaintedRep : NSImageRep {
    void (*_paint)();
}
- (instancetype)initWithSize:(NSSize)size paint:(void (*)())paint;
@end

@implementation VeltrixPaintedRep

- (instancetype)initWithSize:(NSSize)size paint:(void (*)())paint {
    self = [super init];
    if (self) {
        _paint = paint;
        [self setSize:size];
        [self setAlpha:YES];
    }
    return self;
}

- (BOOL)draw {
    _paint();
    return YES;
}

@end

namespace veltrix::gnustep {

RetainPtr<NSImage> makePaintedImage(NSSize size, void (*paint)()) {
    RetainPtr<NSImage> image = adoptNS([[NSImage alloc] initWithSize:size]);
    [image
        addRepresentation:adoptNS([[VeltrixPaintedRep alloc] initWithSize:size paint:paint]).get()];
    return image;
}

}  // namespace veltrix::gnustep
