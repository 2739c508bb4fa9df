#import "LengthTimeField.h"

@implementation LengthTimeField

- (void)setFormat:(std::uint32_t)format
{
    m_format = format;
}

- (std::uint32_t)format
{
    return m_format;
}

- (void)setFrameAndSampleRate:(double)rate
{
    static_cast<void>(rate);
}

- (void)setSampleRate:(double)rate
{
    static_cast<void>(rate);
}

- (void)setFrameRate:(double)rate
{
    static_cast<void>(rate);
}

- (void)setTempo:(double)tempo
{
    static_cast<void>(tempo);
}

- (void)setTimeSignature:(std::uint32_t)signature
{
    static_cast<void>(signature);
}

- (void)setTicksPerBeat:(std::uint32_t)ticks
{
    static_cast<void>(ticks);
}

- (void)setIsLength:(BOOL)flag
{
    static_cast<void>(flag);
}

- (void)setMinValue:(double)samples
{
    static_cast<void>(samples);
}

- (void)setMaxValue:(double)samples
{
    static_cast<void>(samples);
}

- (std::int64_t)getIncrement
{
    return 1;
}

- (NSMenu*)createDefaultMenuWithTarget:(id)target
{
    static_cast<void>(target);
    return [[[NSMenu alloc] initWithTitle:@""] autorelease];
}

- (void)setDefaultMenu:(NSMenu*)menu
{
    [self setMenu:menu];
}

@end
