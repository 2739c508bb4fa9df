#import "XePopUpButton.h"

#import "XePopUpButtonCell.h"

@implementation XePopUpButton

+ (Class)cellClass
{
    return [XePopUpButtonCell class];
}

@end
