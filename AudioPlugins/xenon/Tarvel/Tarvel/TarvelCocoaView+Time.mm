#import "LengthTimeField.h"
#import "TarvelCocoaView+Private.h"
#import "TarvelUnits.h"
#import "XeParameterSetter.h"

#import <objc/runtime.h>

namespace {

// All three in samples.
void _setRange(NSStepper* stepper, double minimum, double maximum, float increment)
{
    [stepper setMinValue:minimum];
    [stepper setMaxValue:maximum];
    [stepper setIncrement:increment];
}

} // namespace

@implementation TarvelCocoaView (Time)

- (TarvelLengths)_lengths
{
    return {{
        {kTarvelParam_FadeInLength, fadeInLengthTextField, fadeInLengthStepper},
        {kTarvelParam_FadeOutLength, fadeOutLengthTextField, fadeOutLengthStepper},
        {kTarvelParam_MinSilence, minSilenceTextField, minSilenceStepper},
        {kTarvelParam_CropStart, cropStartTextField, cropStartStepper},
        {kTarvelParam_CropLength, cropLengthTextField, cropLengthStepper},
    }};
}

// Text fields other than the minimum silence have no limits.
- (void)_updateRangesWithStep:(float)step
{
    const auto longest = static_cast<double>(tarvel::longestLength(mInputLength, mSampleRate));
    const auto shortestSilence = static_cast<double>(tarvel::shortestSilence(mSampleRate));
    for (NSStepper* stepper :
         {fadeInLengthStepper, fadeOutLengthStepper, cropStartStepper, cropLengthStepper}) {
        _setRange(stepper, 0, longest, step);
    }
    [minSilenceTextField setMinValue:shortestSilence];
    [minSilenceTextField setMaxValue:longest];
    _setRange(minSilenceStepper, shortestSilence, longest, step);
}

- (void)_updateTimeControls
{
    for (const TarvelLengthControls& length : [self _lengths]) {
        [length.textField setFrameAndSampleRate:mSampleRate];
        [length.textField setFormat:mTimeFormat];
    }
    [self _updateRangesWithStep:static_cast<float>([fadeInLengthTextField getIncrement])];
}

- (void)_updateLengthText:(LengthTimeField*)textField
               andStepper:(NSStepper*)stepper
                 forValue:(Float32)value
{
    const SInt64 samples = tarvel::samplesFromMs(value, mSampleRate);
    [textField setObjectValue:[NSNumber numberWithLongLong:samples]];
    [stepper setIntegerValue:samples];
}

- (void)_lengthChangedForParam:(UInt32)parameter fromObject:(id)sender
{
    // As long as the effect tells no rate, a count of samples is no length at all.
    if (!(mSampleRate > 0)) {
        return;
    }
    const SInt64 samples = [sender isKindOfClass:[NSStepper class]]
                               ? [sender integerValue]
                               : [[sender objectValue] longLongValue];
    [mParamSetter setParameter:parameter
                       toValue:tarvel::msFromSamples(samples, mSampleRate)
                    fromObject:sender];
}

@end

@implementation TarvelCocoaView (FormatMenu)

- (IBAction)onFormatMenuAction:(id)sender
{
    const UInt32 format = static_cast<UInt32>([sender tag]);
    AudioUnitSetProperty(mAU, kTarvelProperty_TimeFormat, kAudioUnitScope_Global, 0, &format,
                         sizeof format);
    // Still with the format of before: the new one arrives as the effect's event.
    [self _updateTimeControls];
}

- (BOOL)validateUserInterfaceItem:(id<NSValidatedUserInterfaceItem>)item
{
    // Selectors of one name need not be one pointer.
    if (!sel_isEqual([item action], @selector(onFormatMenuAction:)) ||
        ![(id)item respondsToSelector:@selector(setState:)]) {
        return YES;
    }
    const BOOL inUse = [item tag] == static_cast<NSInteger>([fadeInLengthTextField format]);
    [(NSMenuItem*)item setState:inUse ? NSOnState : NSOffState];
    return YES;
}

@end
