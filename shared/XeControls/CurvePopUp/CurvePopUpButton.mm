#import "CurvePopUpButton.h"

@implementation CurvePopUpButton

- (NSInteger)curve
{
    return m_curve;
}

- (void)setCurve:(NSInteger)curve
{
    m_curve = curve;
}

@end
