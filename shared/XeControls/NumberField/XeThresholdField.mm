#import "XeThresholdField.h"

#import "XeThresholdFormatter.h"

#import <AppKit/AppKit.h>

@implementation XeThresholdField

- (void)setUpField
{
    m_formatter = [[XeThresholdFormatter alloc] init];
    [super setUpField];
}

- (void)dealloc
{
    [m_formatter release];
    [super dealloc];
}

- (id)formatter
{
    return m_formatter;
}

- (void)setFormatter:(NSFormatter*)formatter
{
    if ([formatter isKindOfClass:[XeThresholdFormatter class]]) {
        [m_formatter autorelease];
        m_formatter = [static_cast<XeThresholdFormatter*>(formatter) retain];
        [self showValueUnlessTyping];
    }
}

- (void)setMinFinity:(BOOL)flag
{
    [m_formatter setMinFinity:flag];
    [self showValueUnlessTyping];
}

- (BOOL)minFinity
{
    return [m_formatter minFinity];
}

- (double)doubleValue
{
    return [m_formatter clampedValue:[m_value doubleValue]];
}

- (id)objectValue
{
    return m_value != nil ? @([self doubleValue]) : nil;
}

- (NSString*)textForValue:(id)value
{
    return [m_formatter stringForObjectValue:value];
}

- (id)valueForText:(NSString*)text
{
    id value = nil;
    return [m_formatter getObjectValue:&value forString:text errorDescription:nullptr] ? value
                                                                                       : nil;
}

- (BOOL)stepEditedValue:(int)steps
{
    id const value = [self valueForText:[self stringValue]];
    if (value == nil) {
        NSBeep();
        return YES;
    }
    const double base = [self isTyping] ? [value doubleValue] : [self doubleValue];
    id const stepped = @([m_formatter clampedValue:base + steps]);
    [self takeValue:stepped selecting:NSMakeRange(0, NSUIntegerMax)];
    return YES;
}

@end
