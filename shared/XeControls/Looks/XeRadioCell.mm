#import "XeRadioCell.h"

@implementation XeRadioCell
@end
