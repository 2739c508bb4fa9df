#import "XeButton.h"

#import "XeButtonCell.h"

@implementation XeButton

+ (Class)cellClass
{
    return [XeButtonCell class];
}

- (void)dealloc
{
    xenon::Hover::forget(self);
    [super dealloc];
}

@end
