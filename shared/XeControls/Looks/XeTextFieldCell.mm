#import "XeTextFieldCell.h"

@implementation XeTextFieldCell
@end
