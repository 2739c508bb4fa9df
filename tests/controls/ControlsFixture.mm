#import "ControlsFixture.h"

@implementation ActionCounter

- (void)dealloc
{
    [m_lastValue release];
    [super dealloc];
}

- (void)act:(id)sender
{
    ++m_count;
    m_lastSender = sender;
    [m_lastValue release];
    m_lastValue = [[sender objectValue] retain];
}

- (int)count
{
    return m_count;
}

- (id)lastValue
{
    return m_lastValue;
}

- (id)lastSender
{
    return m_lastSender;
}

@end
