#import "XeSliderCell.h"

@implementation XeSliderCell
@end
