#import "XeStepper.h"

#import "XeStepperCell.h"

@implementation XeStepper

+ (Class)cellClass
{
    return [XeStepperCell class];
}

@end
