#pragma once

#import "TarvelParameters.h"

#import <AppKit/AppKit.h>
#import <AudioToolbox/AudioToolbox.h>
#import <AudioUnit/AudioUnit.h>
#import <CoreFoundation/CoreFoundation.h>

@class CurvePopUpButton, LengthTimeField, XeParameterSetter, XeSlider, XeThresholdField;

/// The editor of one effect instance.
///
/// The interface description "TarvelCocoaView" makes the view and its controls; setAU: binds it to
/// an effect. From then on every control shows the effect's state, and a control that the user
/// changes writes its parameter inside a gesture. A value that comes back from the host, the echo
/// of the editor's own writes included, only changes what the controls show.
///
/// Everything runs on the thread whose run loop was current at setAU:, no lock is taken. [main]
@interface TarvelCocoaView : NSView {
    // The controls belong to the interface description.
    IBOutlet NSPopUpButton* functionPopupButton; // parameter 0
    IBOutlet NSMatrix* gainUnitsButtons;         // column 0 = dB, column 1 = percent
    IBOutlet XeThresholdField* attackTextField;  // parameter 1
    IBOutlet XeSlider* attackSlider;
    IBOutlet XeThresholdField* releaseTextField; // parameter 2
    IBOutlet XeSlider* releaseSlider;
    IBOutlet CurvePopUpButton* fadeInTypePopupButton; // parameter 3
    IBOutlet LengthTimeField* fadeInLengthTextField;  // parameter 4
    IBOutlet NSStepper* fadeInLengthStepper;
    IBOutlet CurvePopUpButton* fadeOutTypePopupButton; // parameter 5
    IBOutlet LengthTimeField* fadeOutLengthTextField;  // parameter 6
    IBOutlet NSStepper* fadeOutLengthStepper;
    IBOutlet NSTextField* minSilenceLabel; // parameter 7
    IBOutlet LengthTimeField* minSilenceTextField;
    IBOutlet NSStepper* minSilenceStepper;
    IBOutlet NSTextField* cropStartLabel; // parameter 8
    IBOutlet LengthTimeField* cropStartTextField;
    IBOutlet NSStepper* cropStartStepper;
    IBOutlet NSTextField* cropLengthLabel; // parameter 9
    IBOutlet LengthTimeField* cropLengthTextField;
    IBOutlet NSStepper* cropLengthStepper;

    AudioUnit mAU;                                     // not owned; null until bound
    AudioUnitParameter mParameter[kTarvelParam_Count]; // one per parameter ID
    AUEventListenerRef mEventListener;                 // owned; null until bound
    CFArrayRef mFunctionStrings;                       // owned; names of the function modes
    Float64 mSampleRate;                               // Hz
    UInt64 mInputLength;                               // samples; 0 = unknown
    UInt32 mTimeFormat;                                // a _zqposfmt_format
    UInt32 mAutoPreflight;                             // mirror of kTarvelProperty_AutoPreflight
    UInt32 mPreflightDirty;                            // mirror of kTarvelProperty_PreflightDirty
    XeParameterSetter* mParamSetter;                   // owned; null until bound
    NSColor* mBackgroundColor;                         // owned; pattern behind the controls
}

/// Binds the view to `audioUnit` and shows its state. A view that is bound already is unbound
/// first, also from the same effect. The first view of the process localises the editor's strings.
///
/// @param audioUnit  Not owned. The view tolerates an effect that goes away first.
///
/// A failed call of the host raises an assertion through the thread's NSAssertionHandler; where
/// the handler returns, binding goes on with the next step.
- (void)setAU:(AudioUnit)audioUnit;

@end

/// What the controls send. Each writes through the parameter setter with the sending control as
/// the host's sender.
@interface TarvelCocoaView (Actions)

- (IBAction)functionChanged:(id)sender; // the sender's selected item -> parameter 0

/// Shows both thresholds in the unit that is selected. Writes nothing; the sender may be nil.
- (IBAction)gainUnitsChanged:(id)sender;

/// Writes the threshold: what the text field says when it is the sender, else the slider's value.
- (IBAction)attackChanged:(id)sender;
- (IBAction)releaseChanged:(id)sender;

- (IBAction)fadeInTypeChanged:(id)sender; // the pop-up's curve code, whoever sends
- (IBAction)fadeOutTypeChanged:(id)sender;

- (IBAction)fadeInLengthChanged:(id)sender; // the sender's samples -> ms
- (IBAction)fadeOutLengthChanged:(id)sender;
- (IBAction)minSilenceChanged:(id)sender;
- (IBAction)cropStartChanged:(id)sender;
- (IBAction)cropLengthChanged:(id)sender;

- (IBAction)helpButtonClicked:(id)sender; // asks for help topic 11

@end

/// The menu of position formats that the length fields share.
@interface TarvelCocoaView (FormatMenu) <NSUserInterfaceValidations>

/// Stores the item's tag as the effect's time format. The fields change when the effect announces
/// the new format.
- (IBAction)onFormatMenuAction:(id)sender;

/// Ticks the format item that is in use. Always YES: no item is ever disabled.
- (BOOL)validateUserInterfaceItem:(id<NSValidatedUserInterfaceItem>)item;

@end
