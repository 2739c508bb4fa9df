#import "XeThresholdFormatter.h"

@implementation XeThresholdFormatter

- (void)setMinFinity:(BOOL)flag
{
    m_minFinity = flag;
}

- (BOOL)minFinity
{
    return m_minFinity;
}

@end
