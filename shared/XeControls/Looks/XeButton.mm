#import "XeButton.h"

#import "XeButtonCell.h"

@implementation XeButton

+ (Class)cellClass
{
    return [XeButtonCell class];
}

@end
