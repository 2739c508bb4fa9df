#import "XeRadioMatrix.h"

#import "XeRadioCell.h"

@implementation XeRadioMatrix

+ (Class)cellClass
{
    return [XeRadioCell class];
}

@end
