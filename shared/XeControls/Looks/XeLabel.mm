#import "XeLabel.h"

#import "XeTextFieldCell.h"

@implementation XeLabel

+ (Class)cellClass
{
    return [XeTextFieldCell class];
}

@end
