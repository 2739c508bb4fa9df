#import "XeButtonCell.h"

@implementation XeButtonCell
@end
