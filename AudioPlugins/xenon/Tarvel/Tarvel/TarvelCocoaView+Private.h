#pragma once

#import "TarvelCocoaView.h"

#include <array>

/// One length: the parameter and the two controls that show it.
struct TarvelLengthControls {
    AudioUnitParameterID parameter;
    LengthTimeField* textField;
    NSStepper* stepper;
};

/// The five lengths in the order in which they are always walked: fade in, fade out, minimum
/// silence, crop start, crop length.
using TarvelLengths = std::array<TarvelLengthControls, 5>;

// The steps of the view's life, shared by its four source files. [main]

@interface TarvelCocoaView (Binding)

/// Makes the event listener and the parameter setter of mAU, and attaches both sliders.
- (void)_addListeners;

/// Ends what _addListeners made, and forgets the function names. Harmless on an unbound view.
- (void)_removeListeners;

/// Reads the effect's whole state into the controls.
- (void)_synchronizeUIWithParameterValues;

/// Where every event arrives, those of synchronising included.
/// @param object  The registered object, or nil; not looked at.
/// @param value   The parameter's value; for property events 0 by convention of the host layer.
- (void)_eventListener:(void*)object event:(const AudioUnitEvent*)event value:(Float32)value;

@end

@interface TarvelCocoaView (Controls)

/// Shows the function mode and greys the lengths that it does not use. `value` is the index of a
/// mode the effect named.
- (void)_updateFunction:(Float32)value;

/// Shows a threshold in dB on the slider, and in the selected unit in the text field.
- (void)_updateThresholdSlider:(XeSlider*)slider
                       andText:(XeThresholdField*)textField
                      forValue:(Float32)value;

/// Shows a curve; `value` is its code.
- (void)_updateCurveButton:(CurvePopUpButton*)button forValue:(Float32)value;

@end

@interface TarvelCocoaView (Time)

- (TarvelLengths)_lengths;

/// Gives the length fields and steppers the present rate, format, limits and step.
- (void)_updateTimeControls;

/// Shows a length in both of its controls; `value` in ms.
- (void)_updateLengthText:(LengthTimeField*)textField
               andStepper:(NSStepper*)stepper
                 forValue:(Float32)value;

/// Writes the samples that `sender`, a stepper or a length field, holds. Its partner follows when
/// the effect's event comes back.
- (void)_lengthChangedForParam:(UInt32)parameter fromObject:(id)sender;

@end
