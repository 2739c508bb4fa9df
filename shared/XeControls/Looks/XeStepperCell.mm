#import "XeStepperCell.h"

@implementation XeStepperCell
@end
