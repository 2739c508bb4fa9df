#import "XeThresholdFormatter.h"

#include "ThresholdText.h"

#import <Foundation/Foundation.h>

#include <cmath>
#include <string>

using xenon::threshold::Unit;

@implementation XeThresholdFormatter

- (id)init
{
    self = [super init];
    if (self != nil) {
        [self setNegativeInfinitySymbol:@"-Inf."];
    }
    return self;
}

- (void)setMinFinity:(BOOL)flag
{
    m_minFinity = flag;
}

- (BOOL)minFinity
{
    return m_minFinity;
}

- (Unit)_unit
{
    return m_minFinity ? Unit::Decibel : Unit::Percent;
}

- (double)clampedValue:(double)value
{
    NSNumber* const minimum = [self minimum];
    NSNumber* const maximum = [self maximum];
    if (minimum != nil && !(value >= [minimum doubleValue])) {
        return [minimum doubleValue];
    }
    return maximum != nil && value > [maximum doubleValue] ? [maximum doubleValue] : value;
}

- (BOOL)_isMinusInfinity:(double)value
{
    return !std::isfinite(value) ||
           (m_minFinity && [self minimum] != nil && value <= [[self minimum] doubleValue]);
}

- (NSString*)stringForObjectValue:(id)object
{
    if (![object respondsToSelector:@selector(doubleValue)]) {
        return nil;
    }
    const double value = [object doubleValue];
    if ([self _isMinusInfinity:value]) {
        return [self negativeInfinitySymbol];
    }
    return @(xenon::threshold::render(value, [self _unit]).c_str());
}

- (BOOL)getObjectValue:(id*)object
             forString:(NSString*)string
      errorDescription:(NSString**)description
{
    const BOOL isSymbol = [string isEqualToString:[self negativeInfinitySymbol]];
    NSData* const data = [string dataUsingEncoding:NSUTF32LittleEndianStringEncoding];
    const std::wstring_view text(static_cast<const wchar_t*>([data bytes]),
                                 [data length] / sizeof(wchar_t));
    const auto value =
        isSymbol ? std::optional(-HUGE_VAL) : xenon::threshold::parse(text, [self _unit]);
    if (!value) {
        if (description != nullptr) {
            *description = @"This is no level.";
        }
        return NO;
    }
    if (object != nullptr) {
        *object = @([self clampedValue:*value]);
    }
    return YES;
}

@end
