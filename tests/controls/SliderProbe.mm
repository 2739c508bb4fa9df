#import "SliderProbe.h"

#import <AppKit/AppKit.h>

#include <cstdio>

static std::string actionText(double value)
{
    char text[64];
    std::snprintf(text, sizeof text, "action %g", value);
    return text;
}

@implementation SliderProbe

@synthesize log = m_log;

- (void)valueDidChange
{
    [super valueDidChange];
    if (m_log != nullptr) {
        m_log->push_back("hook");
    }
}

@end

@implementation SliderListener

- (id)initWithLog:(SliderLog*)log
{
    self = [super init];
    m_log = log;
    return self;
}

- (void)dealloc
{
    [[NSNotificationCenter defaultCenter] removeObserver:self];
    [m_reply release];
    [super dealloc];
}

- (void)listenTo:(XeSlider*)slider
{
    [slider setTarget:self];
    [slider setAction:@selector(sliderMoved:)];
    NSNotificationCenter* const center = [NSNotificationCenter defaultCenter];
    [center addObserver:self
               selector:@selector(pressed:)
                   name:@"XeSliderMouseDownNotification"
                 object:slider];
    [center addObserver:self
               selector:@selector(released:)
                   name:@"XeSliderMouseUpNotification"
                 object:slider];
}

- (void)replyToNextActionWith:(double)value
{
    [m_reply release];
    m_reply = [@(value) retain];
}

- (void)sliderMoved:(id)sender
{
    m_log->push_back(actionText([sender doubleValue]));
    NSNumber* const reply = [m_reply autorelease];
    m_reply = nil;
    if (reply == nil) {
        return;
    }
    SliderModel* const model = [[sender getValueBinding] objectForKey:NSObservedObjectKey];
    if (model != nil) {
        [model setLevel:[reply doubleValue]];
    } else {
        [sender setDoubleValue:[reply doubleValue]];
    }
}

- (void)keyDown:(NSEvent*)event
{
    m_log->push_back(std::string("key ") + [[event characters] UTF8String]);
}

- (void)pressed:(NSNotification*)notification
{
    m_log->push_back([notification userInfo] == nil ? "down" : "down with user info");
}

- (void)released:(NSNotification*)notification
{
    m_log->push_back([notification userInfo] == nil ? "up" : "up with user info");
}

@end

@implementation SliderModel
@synthesize level;
@end
