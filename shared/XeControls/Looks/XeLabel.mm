#import "XeLabel.h"

#import "XePalette.h"
#import "XeTextFieldCell.h"

@implementation XeLabel

+ (Class)cellClass
{
    return [XeTextFieldCell class];
}

- (void)_setUp
{
    [self setEditable:NO];
    [self setSelectable:NO];
    [self setBezeled:NO];
    [self setBordered:NO];
    [self setDrawsBackground:NO];
    [self setFont:[XePalette font:XeFontRole::Text]];
}

- (id)initWithFrame:(NSRect)frame
{
    self = [super initWithFrame:frame];
    if (self != nil) {
        [self _setUp];
        [self setTextColor:[XePalette color:XeTone::Text]];
    }
    return self;
}

- (id)initWithCoder:(NSCoder*)coder
{
    self = [super initWithCoder:coder];
    if (self != nil) {
        [self _setUp];
    }
    return self;
}

// One platform draws a label anew only for a new text.
- (void)setTextColor:(NSColor*)color
{
    if (![color isEqual:[self textColor]]) {
        [super setTextColor:color];
        [self setNeedsDisplay:YES];
    }
}

@end
