#import "XePopUpButtonCell.h"

@implementation XePopUpButtonCell
@end
