#import "CurvePopUpButton.h"
#import "TarvelCocoaView+Private.h"
#import "TarvelUnits.h"
#import "XeHelp.h"
#import "XeParameterSetter.h"
#import "XeSlider.h"
#import "XeThresholdField.h"

namespace {

constexpr int kHelpTopic = 11;

void _showUsed(BOOL used, NSTextField* label, LengthTimeField* field, NSStepper* stepper)
{
    [label setTextColor:used ? [NSColor whiteColor] : [NSColor lightGrayColor]];
    [(NSControl*)field setEnabled:used];
    [stepper setEnabled:used];
}

void _setRange(XeThresholdField* field, BOOL lowestIsInfinity, float minimum, float maximum)
{
    [field setMinFinity:lowestIsInfinity];
    NSNumberFormatter* const formatter = [field formatter];
    [formatter setMinimum:(id) @(minimum)];
    [formatter setMaximum:(id) @(maximum)];
}

} // namespace

@implementation TarvelCocoaView (Controls)

- (BOOL)_showsPercent
{
    return [gainUnitsButtons selectedColumn] != 0;
}

- (void)_updateFunction:(Float32)value
{
    const int mode = static_cast<int>(value);
    if (mFunctionStrings != nullptr) {
        [functionPopupButton setTitle:(NSString*)CFArrayGetValueAtIndex(mFunctionStrings, mode)];
    }
    const BOOL usesSilence = mode == kTarvelFunction_UsesMinSilence;
    const BOOL usesCrop = mode == kTarvelFunction_UsesCrop;
    _showUsed(usesSilence, minSilenceLabel, minSilenceTextField, minSilenceStepper);
    _showUsed(usesCrop, cropStartLabel, cropStartTextField, cropStartStepper);
    _showUsed(usesCrop, cropLengthLabel, cropLengthTextField, cropLengthStepper);
}

- (void)_updateThresholdSlider:(XeSlider*)slider
                       andText:(XeThresholdField*)textField
                      forValue:(Float32)value
{
    const double shown =
        [self _showsPercent] ? tarvel::shownPercent(value) : tarvel::shownDb(value);
    [slider setDoubleValue:value];
    [textField setDoubleValue:shown];
}

- (void)_updateCurveButton:(CurvePopUpButton*)button forValue:(Float32)value
{
    [button setCurve:static_cast<int>(value)];
}

- (void)_thresholdChangedForParam:(UInt32)parameter
                       withSlider:(XeSlider*)slider
                          andText:(XeThresholdField*)textField
                       fromObject:(id)sender
{
    double thresholdDb = [slider doubleValue];
    if (sender == textField) {
        const float typed = [textField floatValue];
        thresholdDb = [self _showsPercent] ? tarvel::thresholdFromPercent(typed) : typed;
    }
    [mParamSetter setParameter:parameter
                       toValue:static_cast<Float32>(thresholdDb)
                    fromObject:sender];
}

@end

@implementation TarvelCocoaView (Actions)

- (IBAction)functionChanged:(id)sender
{
    [mParamSetter setParameter:kTarvelParam_Function
                       toValue:static_cast<Float32>([sender indexOfSelectedItem])
                    fromObject:sender];
}

- (IBAction)gainUnitsChanged:(id)sender
{
    (void)sender;
    if ([self _showsPercent]) {
        _setRange(attackTextField, NO, tarvel::kMinThresholdPercent, tarvel::kMaxThresholdPercent);
        _setRange(releaseTextField, NO, tarvel::kMinThresholdPercent, tarvel::kMaxThresholdPercent);
    } else {
        _setRange(attackTextField, YES, tarvel::kMinThresholdDb, tarvel::kMaxThresholdDb);
        _setRange(releaseTextField, YES, tarvel::kMinThresholdDb, tarvel::kMaxThresholdDb);
    }
    [self _updateThresholdSlider:attackSlider
                         andText:attackTextField
                        forValue:[attackSlider floatValue]];
    [self _updateThresholdSlider:releaseSlider
                         andText:releaseTextField
                        forValue:[releaseSlider floatValue]];
}

- (IBAction)attackChanged:(id)sender
{
    [self _thresholdChangedForParam:kTarvelParam_AttackThreshold
                         withSlider:attackSlider
                            andText:attackTextField
                         fromObject:sender];
}

- (IBAction)releaseChanged:(id)sender
{
    [self _thresholdChangedForParam:kTarvelParam_ReleaseThreshold
                         withSlider:releaseSlider
                            andText:releaseTextField
                         fromObject:sender];
}

- (IBAction)fadeInTypeChanged:(id)sender
{
    [mParamSetter setParameter:kTarvelParam_FadeInType
                       toValue:static_cast<Float32>([fadeInTypePopupButton curve])
                    fromObject:sender];
}

- (IBAction)fadeOutTypeChanged:(id)sender
{
    [mParamSetter setParameter:kTarvelParam_FadeOutType
                       toValue:static_cast<Float32>([fadeOutTypePopupButton curve])
                    fromObject:sender];
}

- (IBAction)fadeInLengthChanged:(id)sender
{
    [self _lengthChangedForParam:kTarvelParam_FadeInLength fromObject:sender];
}

- (IBAction)fadeOutLengthChanged:(id)sender
{
    [self _lengthChangedForParam:kTarvelParam_FadeOutLength fromObject:sender];
}

- (IBAction)minSilenceChanged:(id)sender
{
    [self _lengthChangedForParam:kTarvelParam_MinSilence fromObject:sender];
}

- (IBAction)cropStartChanged:(id)sender
{
    [self _lengthChangedForParam:kTarvelParam_CropStart fromObject:sender];
}

- (IBAction)cropLengthChanged:(id)sender
{
    [self _lengthChangedForParam:kTarvelParam_CropLength fromObject:sender];
}

- (IBAction)helpButtonClicked:(id)sender
{
    (void)sender;
    XeHelp::Goto(kHelpTopic, nullptr);
}

@end
