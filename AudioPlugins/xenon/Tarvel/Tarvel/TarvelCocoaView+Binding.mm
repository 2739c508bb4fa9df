#import "LengthTimeField.h"
#import "TarvelCocoaView+Private.h"
#import "TarvelUnits.h"
#import "XeParameterSetter.h"
#import "XePosFmt.h"
#import "XeSlider.h"
#import "XeThresholdField.h"

/// What is sent to an assertion handler. The platform's header may promise that it never returns;
/// a host's own handler does, and the binding then goes on.
@protocol TarvelAssertionHandler
- (void)handleFailureInMethod:(SEL)method
                       object:(id)object
                         file:(NSString*)file
                   lineNumber:(NSInteger)line
                  description:(NSString*)format, ...;
@end

namespace {

// Seconds. The host merges the changes that come closer together than this.
constexpr Float32 kNotificationInterval = 0.05F;
constexpr Float32 kGranularity = 0.05F;

// What the view listens to beside the parameters, in the order of registering. The sample rate
// follows from the stream format; the input length is read when the view is synchronised.
struct ListenedProperty {
    AudioUnitPropertyID property;
    AudioUnitScope scope;
};
constexpr ListenedProperty kListenedProperties[] = {
    {kTarvelProperty_AutoPreflight, kAudioUnitScope_Global},
    {kTarvelProperty_PreflightDirty, kAudioUnitScope_Global},
    {kTarvelProperty_TimeFormat, kAudioUnitScope_Global},
    {kAudioUnitProperty_StreamFormat, kAudioUnitScope_Output},
};

AudioUnitEvent _propertyEvent(AudioUnit audioUnit, AudioUnitPropertyID property,
                              AudioUnitScope scope)
{
    AudioUnitEvent event{};
    event.mEventType = kAudioUnitEvent_PropertyChange;
    event.mArgument.mProperty = {audioUnit, property, scope, 0};
    return event;
}

AudioUnitEvent _parameterEvent(const AudioUnitParameter& parameter)
{
    AudioUnitEvent event{};
    event.mEventType = kAudioUnitEvent_ParameterValueChange;
    event.mArgument.mParameter = parameter;
    return event;
}

// NSAssert() for the result of a host's call, which no build leaves out.
void _assertNoError(OSStatus status, id view, SEL method, NSString* description,
                    const char* file = __builtin_FILE(), int line = __builtin_LINE())
{
    if (status != noErr) {
        const id<TarvelAssertionHandler> handler = (id)[NSAssertionHandler currentHandler];
        [handler handleFailureInMethod:method
                                object:view
                                  file:[NSString stringWithUTF8String:file]
                            lineNumber:line
                           description:@"%@", description];
    }
}

// A call that fails leaves in `outData` what was there.
void _getGlobal(AudioUnit audioUnit, AudioUnitPropertyID property, void* outData, UInt32 size)
{
    AudioUnitGetProperty(audioUnit, property, kAudioUnitScope_Global, 0, outData, &size);
}

// Puts the host's tempo and time signature into `format`, each only where the host tells one.
void _readMusicalContext(AudioUnit audioUnit, XePosFmt& format)
{
    HostCallbackInfo host{};
    _getGlobal(audioUnit, kAudioUnitProperty_HostCallbacks, &host, sizeof host);
    if (host.beatAndTempoProc != nullptr) {
        Float64 tempo = 0;
        host.beatAndTempoProc(host.hostUserData, nullptr, &tempo);
        if (tempo != 0) {
            format.dTempo = tempo;
        }
    }
    if (host.musicalTimeLocationProc != nullptr) {
        Float32 numerator = 0;
        UInt32 denominator = 0;
        host.musicalTimeLocationProc(host.hostUserData, nullptr, &numerator, &denominator, nullptr);
        if (numerator != 0 && denominator != 0) {
            format.dwTimeSignature = (static_cast<UInt32>(numerator) << 16) | denominator;
        }
    }
}

void _prepareLengthField(LengthTimeField* field, const XePosFmt& format, BOOL isLength)
{
    [field setIsLength:isLength];
    [field setFormat:format.eFormat];
    [field setSampleRate:format.dwSampleRate];
    [field setFrameRate:format.frameRate()];
    [field setTempo:format.dTempo];
    [field setTimeSignature:format.dwTimeSignature];
    [field setTicksPerBeat:format.cTicksPerBeat];
}

void EventListenerDispatcher(void* context, void* object, const AudioUnitEvent* event,
                             UInt64 /*hostTime*/, AudioUnitParameterValue value)
{
    [(TarvelCocoaView*)context _eventListener:object event:event value:value];
}

} // namespace

@implementation TarvelCocoaView (Binding)

- (void)_addEventType:(AudioUnitEvent)event
{
    const OSStatus status = AUEventListenerAddEventType(mEventListener, self, &event);
    _assertNoError(status, self, @selector(_addListeners),
                   @"[TarvelCocoaView _addListeners] AUEventListenerAddEventType()");
}

- (void)_createListener
{
    const OSStatus status = AUEventListenerCreate(
        EventListenerDispatcher, self, CFRunLoopGetCurrent(), kCFRunLoopCommonModes,
        kNotificationInterval, kGranularity, &mEventListener);
    _assertNoError(status, self, @selector(_addListeners),
                   @"[TarvelCocoaView _addListeners] AUEventListenerCreate()");
}

- (void)_addListeners
{
    [self _createListener];
    for (const AudioUnitParameterID parameter : kTarvelParameterIds) {
        mParameter[parameter] = {mAU, parameter, kAudioUnitScope_Global, 0};
        [self _addEventType:_parameterEvent(mParameter[parameter])];
    }
    for (const ListenedProperty& listened : kListenedProperties) {
        [self _addEventType:_propertyEvent(mAU, listened.property, listened.scope)];
    }
    mParamSetter = [[XeParameterSetter alloc] initWithAudioUnit:mAU
                                                       listener:mEventListener
                                                   parameterIds:kTarvelParameterIds
                                                       andCount:kTarvelParam_Count];
    [mParamSetter addXeSlider:attackSlider forParameter:kTarvelParam_AttackThreshold];
    [mParamSetter addXeSlider:releaseSlider forParameter:kTarvelParam_ReleaseThreshold];
}

- (void)_disposeListener
{
    if (mEventListener == nullptr) {
        return;
    }
    const OSStatus status = AUListenerDispose(mEventListener);
    mEventListener = nullptr;
    _assertNoError(status, self, @selector(_removeListeners),
                   @"[TarvelCocoaView _removeListeners] AUListenerDispose()");
}

- (void)_forgetFunctionStrings
{
    if (mFunctionStrings != nullptr) {
        CFRelease(mFunctionStrings);
        mFunctionStrings = nullptr;
    }
}

- (void)_removeListeners
{
    [self _disposeListener];
    [mParamSetter release];
    mParamSetter = nil;
    [self _forgetFunctionStrings];
}

- (void)_synchronizeFunctionNames
{
    [functionPopupButton removeAllItems];
    [self _forgetFunctionStrings];
    _getGlobal(mAU, kAudioUnitProperty_ParameterValueStrings, &mFunctionStrings,
               sizeof(CFArrayRef));
    for (NSString* name in (NSArray*)mFunctionStrings) {
        [functionPopupButton addItemWithTitle:name];
    }
}

- (void)_synchronizeProperty:(AudioUnitPropertyID)property
{
    const AudioUnitEvent event = _propertyEvent(mAU, property, kAudioUnitScope_Global);
    [self _eventListener:nil event:&event value:0];
}

- (XePosFmt)_synchronizePositionFormat
{
    XePosFmt format{zqposfmt_time_ms};
    format.setType(zqposfmt_time_ms);
    format.dwSampleRate = 44100;
    format.dFrameRate = 75.0;
    format.dTempo = 120.0;
    format.dwTimeSignature = 0x40004; // 4/4
    format.cTicksPerBeat = 4;
    _readMusicalContext(mAU, format);

    [self _synchronizeProperty:kAudioUnitProperty_SampleRate];
    format.dwSampleRate = static_cast<UInt32>(mSampleRate);
    [self _synchronizeProperty:kTarvelProperty_InputLength];
    [self _synchronizeProperty:kTarvelProperty_TimeFormat];
    format.setType(static_cast<_zqposfmt_format>(mTimeFormat));
    [self _synchronizeProperty:kTarvelProperty_AutoPreflight];
    [self _synchronizeProperty:kTarvelProperty_PreflightDirty];
    return format;
}

- (void)_synchronizeThresholdRange
{
    for (XeSlider* slider : {attackSlider, releaseSlider}) {
        [slider setMaxValue:tarvel::kMaxThresholdDb];
        [slider setMinValue:tarvel::kMinThresholdDb];
        [slider setAltIncrementValue:0.1];
    }
    for (XeThresholdField* field : {attackTextField, releaseTextField}) {
        [(NSNumberFormatter*)[field formatter] setNegativeInfinitySymbol:@"-Inf."];
    }
}

- (void)_synchronizeLengthFields:(const XePosFmt&)format
{
    NSMenu* const menu = [fadeInLengthTextField createDefaultMenuWithTarget:self];
    for (const TarvelLengthControls& length : [self _lengths]) {
        const BOOL isPosition = length.parameter == kTarvelParam_CropStart;
        _prepareLengthField(length.textField, format, !isPosition);
        [length.textField setDefaultMenu:menu];
    }
}

- (void)_synchronizeParameters
{
    for (const AudioUnitParameter& parameter : mParameter) {
        const AudioUnitEvent event = _parameterEvent(parameter);
        Float32 value = 0;
        const OSStatus status = AudioUnitGetParameter(parameter.mAudioUnit, parameter.mParameterID,
                                                      parameter.mScope, parameter.mElement, &value);
        _assertNoError(status, self, @selector(_synchronizeUIWithParameterValues),
                       @"[TarvelCocoaView synchronizeUIWithParameterValues] (x.1)");
        [self _eventListener:nil event:&event value:value];
    }
}

- (void)_synchronizeUIWithParameterValues
{
    [self _synchronizeFunctionNames];
    const XePosFmt format = [self _synchronizePositionFormat];
    [self _synchronizeThresholdRange];
    [self _synchronizeLengthFields:format];
    [self gainUnitsChanged:nil];
    [self _synchronizeParameters];
}

- (void)_parameter:(AudioUnitParameterID)parameter changedTo:(Float32)value
{
    switch (parameter) {
    case kTarvelParam_Function:
        return [self _updateFunction:value];
    case kTarvelParam_AttackThreshold:
        return [self _updateThresholdSlider:attackSlider andText:attackTextField forValue:value];
    case kTarvelParam_ReleaseThreshold:
        return [self _updateThresholdSlider:releaseSlider andText:releaseTextField forValue:value];
    case kTarvelParam_FadeInType:
        return [self _updateCurveButton:fadeInTypePopupButton forValue:value];
    case kTarvelParam_FadeOutType:
        return [self _updateCurveButton:fadeOutTypePopupButton forValue:value];
    default:
        return [self _showLength:parameter value:value];
    }
}

// IDs that are no length are passed over.
- (void)_showLength:(AudioUnitParameterID)parameter value:(Float32)value
{
    for (const TarvelLengthControls& length : [self _lengths]) {
        if (length.parameter == parameter) {
            [self _updateLengthText:length.textField andStepper:length.stepper forValue:value];
        }
    }
}

// Lengths are kept in milliseconds and shown in samples. Only the two fades show the value that
// is read back; the other three are read too, but show the event's own value.
- (void)_refreshLengthsForValue:(Float32)eventValue
{
    for (const TarvelLengthControls& length : [self _lengths]) {
        Float32 value = 0;
        AudioUnitGetParameter(mAU, length.parameter, kAudioUnitScope_Global, 0, &value);
        const BOOL isFade = length.parameter == kTarvelParam_FadeInLength ||
                            length.parameter == kTarvelParam_FadeOutLength;
        [self _updateLengthText:length.textField
                     andStepper:length.stepper
                       forValue:isFade ? value : eventValue];
    }
}

- (void)_readSampleRateForValue:(Float32)eventValue
{
    const Float64 oldRate = mSampleRate;
    _getGlobal(mAU, kAudioUnitProperty_SampleRate, &mSampleRate, sizeof mSampleRate);
    [self _updateTimeControls];
    if (mSampleRate != oldRate) {
        [self _refreshLengthsForValue:eventValue];
    }
}

- (void)_property:(AudioUnitPropertyID)property changedWithValue:(Float32)value
{
    switch (property) {
    case kAudioUnitProperty_SampleRate:
    case kAudioUnitProperty_StreamFormat:
        return [self _readSampleRateForValue:value];
    case kTarvelProperty_InputLength:
        _getGlobal(mAU, property, &mInputLength, sizeof mInputLength);
        return [self _updateTimeControls];
    case kTarvelProperty_TimeFormat:
        _getGlobal(mAU, property, &mTimeFormat, sizeof mTimeFormat);
        return [self _updateTimeControls];
    case kTarvelProperty_AutoPreflight:
        _getGlobal(mAU, property, &mAutoPreflight, sizeof mAutoPreflight);
        return;
    case kTarvelProperty_PreflightDirty:
        _getGlobal(mAU, property, &mPreflightDirty, sizeof mPreflightDirty);
        return;
    default:
        return;
    }
}

- (void)_eventListener:(void*)object event:(const AudioUnitEvent*)event value:(Float32)value
{
    (void)object;
    const auto& argument = event->mArgument;
    if (event->mEventType == kAudioUnitEvent_ParameterValueChange) {
        [self _parameter:argument.mParameter.mParameterID changedTo:value];
    } else if (event->mEventType == kAudioUnitEvent_PropertyChange) {
        [self _property:argument.mProperty.mPropertyID changedWithValue:value];
    }
}

@end
