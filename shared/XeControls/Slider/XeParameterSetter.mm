#import "XeParameterSetter.h"

#import "XeSlider.h"

#import <Foundation/NSArray.h>
#import <Foundation/NSDictionary.h>
#import <Foundation/NSNotification.h>
#import <Foundation/NSValue.h>

namespace {

AudioUnitEvent _valueChangeOf(AudioUnit audioUnit, AudioUnitParameterID parameterId)
{
    AudioUnitEvent event{};
    event.mEventType = kAudioUnitEvent_ParameterValueChange;
    event.mArgument.mParameter = {audioUnit, parameterId, kAudioUnitScope_Global, 0};
    return event;
}

} // namespace

@implementation XeParameterSetter

- (id)initWithAudioUnit:(AudioUnit)audioUnit
               listener:(AUEventListenerRef)listener
           parameterIds:(const UInt32*)parameterIds
               andCount:(UInt32)count
{
    self = [super init];
    if (self == nil) {
        return nil;
    }
    m_pListener = listener;
    m_events = [[NSMutableDictionary alloc] initWithCapacity:count];
    m_sliders = [[NSMutableDictionary alloc] init];
    for (UInt32 i = 0; i < count; ++i) {
        const AudioUnitEvent event = _valueChangeOf(audioUnit, parameterIds[i]);
        [m_events setObject:[NSValue valueWithBytes:&event objCType:@encode(AudioUnitEvent)]
                     forKey:@(parameterIds[i])];
    }
    return self;
}

- (void)dealloc
{
    [[NSNotificationCenter defaultCenter] removeObserver:self];
    [m_events release];
    [m_sliders release];
    [super dealloc];
}

- (void)addXeSlider:(XeSlider*)slider forParameter:(UInt32)parameterId
{
    [m_sliders setObject:slider forKey:@(parameterId)];
    NSNotificationCenter* const center = [NSNotificationCenter defaultCenter];
    [center addObserver:self
               selector:@selector(handleSliderMouseDown:)
                   name:XeSliderMouseDownNotification
                 object:slider];
    [center addObserver:self
               selector:@selector(handleSliderMouseUp:)
                   name:XeSliderMouseUpNotification
                 object:slider];
}

- (BOOL)_isAttachedSlider:(id)sender
{
    return [[m_sliders allKeysForObject:sender] count] > 0;
}

- (void)_notify:(AudioUnitEventType)type event:(AudioUnitEvent)event fromObject:(id)sender
{
    event.mEventType = type;
    AUEventListenerNotify(m_pListener, sender, &event);
}

- (void)setParameter:(UInt32)parameterId toValue:(Float32)value fromObject:(id)sender
{
    [self setParameter:parameterId toValue:value fromObject:sender forElement:0 withScope:0];
}

- (void)setParameter:(UInt32)parameterId
             toValue:(Float32)value
          fromObject:(id)sender
          forElement:(UInt32)element
           withScope:(UInt32)scope
{
    NSValue* const prototype = [m_events objectForKey:@(parameterId)];
    if (prototype == nil) {
        return;
    }
    AudioUnitEvent event;
    [prototype getValue:&event];
    const AudioUnitParameter& parameter = event.mArgument.mParameter;
    const BOOL isAttachedSlider = [self _isAttachedSlider:sender];
    if (!isAttachedSlider) {
        [self _notify:kAudioUnitEvent_BeginParameterChangeGesture event:event fromObject:sender];
    }
    if (scope == 0 && element == 0) {
        AUParameterSet(m_pListener, sender, &parameter, value, 0);
    } else {
        AudioUnitSetParameter(parameter.mAudioUnit, parameterId, scope, element, value, 0);
        [self _notify:kAudioUnitEvent_ParameterValueChange event:event fromObject:sender];
    }
    if (!isAttachedSlider) {
        [self _notify:kAudioUnitEvent_EndParameterChangeGesture event:event fromObject:sender];
    }
}

- (void)_sendGesture:(AudioUnitEventType)type ofSlider:(id)slider
{
    // A dictionary has no order of its own, so the last key is the highest ID.
    NSArray* const keys =
        [[m_sliders allKeysForObject:slider] sortedArrayUsingSelector:@selector(compare:)];
    NSValue* const prototype = [keys count] > 0 ? [m_events objectForKey:[keys lastObject]] : nil;
    if (prototype == nil) {
        return;
    }
    AudioUnitEvent event;
    [prototype getValue:&event];
    [self _notify:type event:event fromObject:slider];
}

- (void)handleSliderMouseDown:(NSNotification*)notification
{
    [self _sendGesture:kAudioUnitEvent_BeginParameterChangeGesture ofSlider:[notification object]];
}

- (void)handleSliderMouseUp:(NSNotification*)notification
{
    [self _sendGesture:kAudioUnitEvent_EndParameterChangeGesture ofSlider:[notification object]];
}

@end
