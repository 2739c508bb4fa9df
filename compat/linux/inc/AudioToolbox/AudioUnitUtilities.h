#pragma once

#include <AudioUnit/AudioUnit.h>
#include <CoreFoundation/CFRunLoop.h>

/// Listeners that hear of parameter changes, gestures and property changes of any unit in the
/// process, gathered and delivered on a run loop.
///
/// Who is told. A parameter registration matches on unit, parameter, scope, element and event
/// type; a property registration on unit, property, scope and element. A change is heard by every
/// matching registration, those of the listener that sends it included, except:
///
///     sending listener   sending object   skipped
///     null               any              nobody
///     L                  null             every registration of L
///     L                  O                the registration of L with object O
///
/// When. With a notification interval above 0, events wait and are delivered together on the run
/// loop: not before and, but for scheduling, not after one interval has passed since the first
/// undelivered event. Two deliveries are therefore at least one interval apart. With interval 0
/// the callback is made at once, on the thread that notifies.
///
/// What. Events arrive one after the other, in the order of their times. Of two value changes of
/// one registration that follow each other within less than the granularity, while both wait, only
/// the later one is reported, with its own time. They are both kept when a gesture of the same
/// parameter that this listener hears lies between them. Gestures and property changes are never
/// merged. Events of a unit that is gone are dropped with it.
///
/// Threads. The set and notify calls may be made on any thread, an audio thread included: they
/// take no lock, never wait for the delivering thread and do not allocate, except that
/// (1) while more than 4096 events wait in the process, each further one is allocated;
/// (2) the first event after a delivery arms a timer, one system call that does not block;
/// (3) a listener with interval 0 runs its callback inside the call, one call at a time;
/// (4) the unit's own functions are called, and do what they do.
/// All other calls lock and allocate.

/// The one type of listener.
typedef struct AUListenerBase* AUEventListenerRef;
typedef struct AUListenerBase* AUParameterListenerRef;

/// In a record passed to AUParameterListenerNotify(): every parameter of the unit. Scope and
/// element are then not read. Cannot be registered.
enum : AudioUnitParameterID { kAUParameterListener_AnyParameter = 0xFFFFFFFF };

/// Something that happened to a parameter or a property.
typedef struct AudioUnitEvent {
    AudioUnitEventType mEventType;
    union {
        AudioUnitParameter mParameter; // value changes and gestures
        AudioUnitProperty mProperty;   // property changes
    } mArgument;
} AudioUnitEvent;

/// Hears of one event.
/// @param inUserData       As given to AUEventListenerCreate().
/// @param inObject         As given when the event was registered.
/// @param inEvent          Valid during the call.
/// @param inEventHostTime  When it was notified: nanoseconds of CLOCK_MONOTONIC.
/// @param inParameterValue The value at that time, in the parameter's unit. 0 with gestures and
///                         property changes.
typedef void (*AUEventListenerProc)(void* inUserData, void* inObject, const AudioUnitEvent* inEvent,
                                    UInt64 inEventHostTime,
                                    AudioUnitParameterValue inParameterValue);

CF_EXTERN_C_BEGIN

/// Makes a listener.
///
/// @param inProc         Not null.
/// @param inUserData     Handed to `inProc`; kept, not copied.
/// @param inRunLoop      Run loop of the calling thread or of the main thread; null means that of
///                       the calling thread.
/// @param inRunLoopMode  Mode to deliver in; null means the default mode, kCFRunLoopCommonModes
///                       means the default, event-tracking and modal-panel modes.
/// @param inNotificationInterval  Seconds; 0 delivers at once.
/// @param inValueChangeGranularity  Seconds; 0 reports every change. Both are rounded to the
///                       microsecond.
/// @param outListener    Receives the listener, to be given to AUListenerDispose(). Not null.
/// @return kAudio_ParamError for a null function or `outListener`, the run loop of a third thread,
///         and a time that is negative or not finite; the system's error number when it has no
///         timer left. Nothing is changed then.
CF_EXPORT OSStatus AUEventListenerCreate(AUEventListenerProc inProc, void* inUserData,
                                         CFRunLoopRef inRunLoop, CFStringRef inRunLoopMode,
                                         Float32 inNotificationInterval,
                                         Float32 inValueChangeGranularity,
                                         AUEventListenerRef* outListener);

/// Registers an event. The same event for the same object a second time changes nothing.
/// @param inObject  Handed to the callback and compared with the sending object; never followed.
/// @return kAudio_ParamError for a null or unknown listener, a null event, a type that does not
///         exist, AnyParameter, and a unit that is not live.
CF_EXPORT OSStatus AUEventListenerAddEventType(AUEventListenerRef inListener, void* inObject,
                                               const AudioUnitEvent* inEvent);

/// Takes a registration away; its events that still wait are dropped. None registered is no error.
/// @return kAudio_ParamError for a null or unknown listener, a null event and an unknown type.
CF_EXPORT OSStatus AUEventListenerRemoveEventType(AUEventListenerRef inListener, void* inObject,
                                                  const AudioUnitEvent* inEvent);

/// Tells the listeners of an event. A value change carries the value that the unit has now; with
/// AnyParameter it is the same as AUParameterListenerNotify(). Property events are delivered too,
/// although units announce theirs themselves.
/// @return kAudio_ParamError for a null event, an unknown type and a unit that is not live; the
///         unit's error when the value cannot be read. Nobody is told then.
CF_EXPORT OSStatus AUEventListenerNotify(AUEventListenerRef inSendingListener,
                                         void* inSendingObject, const AudioUnitEvent* inEvent);

/// Sets a parameter, then tells the listeners of the value given.
/// @return kAudio_ParamError for a null record, else the result of AudioUnitSetParameter(). Nobody
///         is told of a failure.
CF_EXPORT OSStatus AUParameterSet(AUParameterListenerRef inSendingListener, void* inSendingObject,
                                  const AudioUnitParameter* inParameter,
                                  AudioUnitParameterValue inValue, UInt32 inBufferOffsetInFrames);

/// Tells the listeners of a parameter that was changed behind their backs: they get its present
/// value. With AnyParameter every registration on a parameter of the unit gets the value of its
/// own parameter; one that cannot be read is passed over.
/// @return As AUEventListenerNotify().
CF_EXPORT OSStatus AUParameterListenerNotify(AUParameterListenerRef inSendingListener,
                                             void* inSendingObject,
                                             const AudioUnitParameter* inParameter);

/// Ends a listener. Events that wait are dropped, and no callback is made after the return; on
/// another thread than the one that delivers, it waits for a callback that is under way. May be
/// called inside a callback of the listener, and after the units it listened to are gone.
/// @return kAudio_ParamError for null and for a listener that is already disposed.
CF_EXPORT OSStatus AUListenerDispose(AUParameterListenerRef inListener);

CF_EXTERN_C_END

static_assert(sizeof(AudioUnitEvent) == 32);
