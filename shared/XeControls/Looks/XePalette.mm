#import "XePalette.h"

@implementation XePalette

+ (XeRgb)channelsOfTone:(XeTone)tone
{
    static_cast<void>(tone);
    return {0.5, 0.5, 0.5};
}

+ (NSColor*)color:(XeTone)tone
{
    const XeRgb rgb = [self channelsOfTone:tone];
    return [NSColor colorWithCalibratedRed:rgb.red green:rgb.green blue:rgb.blue alpha:1.0];
}

+ (NSFont*)font:(XeFontRole)role
{
    static_cast<void>(role);
    return [NSFont systemFontOfSize:xenon::metrics::kFontSize];
}

@end
