#pragma once

#import <AudioToolbox/AudioToolbox.h>
#import <AudioUnit/AudioUnit.h>
#import <Foundation/NSObject.h>

@class NSMutableDictionary, NSNotification, XeSlider;

/// The one way by which an editor writes its effect's parameters.
///
/// Every listener of the host hears each write. A write from any control but an attached slider is
/// a whole gesture of its own (begin, value, end), so that a host that records automation sees
/// where it starts and stops. An attached slider's gesture spans its drag: it begins and ends with
/// the slider's two notifications, and the slider's writes carry none, neither those inside the
/// drag nor those of a key or a double click.
///
/// Sender of each call is the control that made the change. The host passes over only those
/// registrations of the sending listener whose object is that control, so an editor that registers
/// with its view hears its own writes. A nil sender silences every registration of the listener:
/// do not pass nil where the echo is wanted.
///
/// Results of the host's calls are not looked at: a write that the effect refuses still ends its
/// gesture. [main]
@interface XeParameterSetter : NSObject {
    AUEventListenerRef m_pListener; // not owned
    NSMutableDictionary* m_events;  // parameter ID -> boxed AudioUnitEvent, one per parameter
    NSMutableDictionary* m_sliders; // parameter ID -> XeSlider
}

/// @param audioUnit     The effect. Not owned; must outlive the setter.
/// @param listener      Sending listener of every call. Not owned; must outlive the setter.
/// @param parameterIds  `count` IDs that may be written, all of scope 0 and element 0; copied. May
///                      be null when `count` is 0.
/// @return              nil when NSObject's initialiser gives nil.
- (id)initWithAudioUnit:(AudioUnit)audioUnit
               listener:(AUEventListenerRef)listener
           parameterIds:(const UInt32*)parameterIds
               andCount:(UInt32)count;

/// Attaches `slider` (retained) to a parameter, in place of the slider attached before. From now on
/// its drags are gestures of that parameter. An ID that may not be written is kept but announces
/// nothing.
///
/// Each slider is meant for one parameter: of one attached to several, the highest ID gets the
/// gestures, and once for each time it was attached.
- (void)addXeSlider:(XeSlider*)slider forParameter:(UInt32)parameterId;

/// setParameter:toValue:fromObject:forElement:withScope: for element 0 of scope 0.
- (void)setParameter:(UInt32)parameterId toValue:(Float32)value fromObject:(id)sender;

/// Writes a parameter: begin gesture, value, end gesture, or the value alone if `sender` is an
/// attached slider, whichever parameter it is attached to. An unknown ID does nothing at all.
///
/// @param value   In the parameter's own unit; not clamped.
/// @param sender  The control that made the change; passed on, not retained.
///
/// Outside element 0 of scope 0 the value is set directly on the effect and then announced. That
/// announcement and the gesture still name scope 0 and element 0.
- (void)setParameter:(UInt32)parameterId
             toValue:(Float32)value
          fromObject:(id)sender
          forElement:(UInt32)element
           withScope:(UInt32)scope;

/// Observers of the sliders' notifications: begin and end the gesture of the parameter that the
/// notification's object is attached to. Any other object is passed over.
- (void)handleSliderMouseDown:(NSNotification*)notification;
- (void)handleSliderMouseUp:(NSNotification*)notification;

@end
