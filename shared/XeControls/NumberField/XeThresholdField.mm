#import "XeThresholdField.h"

#import "XeThresholdFormatter.h"

@implementation XeThresholdField

- (void)awakeFromNib
{
    [self setFormatter:[[[XeThresholdFormatter alloc] init] autorelease]];
}

- (void)setMinFinity:(BOOL)flag
{
    [static_cast<XeThresholdFormatter*>([self formatter]) setMinFinity:flag];
}

- (BOOL)minFinity
{
    return [static_cast<XeThresholdFormatter*>([self formatter]) minFinity];
}

@end
