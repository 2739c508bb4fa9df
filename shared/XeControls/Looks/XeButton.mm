#import "XeButton.h"

#import "XeButtonCell.h"

@implementation XeButton

+ (Class)cellClass
{
    return [XeButtonCell class];
}

- (BOOL)becomeFirstResponder
{
    [self setNeedsDisplay:YES];
    return [super becomeFirstResponder];
}

- (BOOL)resignFirstResponder
{
    [self setNeedsDisplay:YES];
    return [super resignFirstResponder];
}

@end
