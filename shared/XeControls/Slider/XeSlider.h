#pragma once

#import <AppKit/NSSlider.h>

@class NSDictionary, NSEvent, NSNotification, NSString;

/// Posted on the default notification centre when a press on the slider begins a drag and when
/// the button is let go. Object: the slider; no user info. A double click posts neither. [main]
extern NSString* const XeSliderMouseDownNotification;
extern NSString* const XeSliderMouseUpNotification;

/// A slider with six keyboard steps, a default value on double click, and an announced drag.
///
///     key                 plain          Option         Option-Command
///     Up, Right           + basicStep    + smallStep    + tinyStep
///     Down, Left          - basicStep    - smallStep    - tinyStep
///     Page Up             + largeStep    + muchoStep    + grandStep
///     Page Down           - largeStep    - muchoStep    - grandStep
///     Home, End           left and right end; top and bottom of a slider higher than wide
///
/// Shift, Control and Command alone change nothing; every other key goes to NSSlider. Steps are in
/// the unit of the slider's value and are not checked.
///
/// A value that the slider itself sets goes to the object bound to NSValueBinding, if there is one;
/// the slider then follows that object. The action is sent only when the value changed.
///
/// A slider starts as its own target with the action sliderChanged:. Target and action connected
/// in an interface description are set after initialisation and replace both. [main]
@interface XeSlider : NSSlider {
    double tinyStep;
    double smallStep;
    double basicStep;
    double largeStep;
    double muchoStep;
    double grandStep;
    double defaultValue;
    BOOL becomeFirstResponderOnClick;
    BOOL m_isTracking;
    double m_settledValue; // while tracking: sent already or set from outside; NaN before
}

@property (nonatomic) double tinyStep;     // 0.01 at first
@property (nonatomic) double smallStep;    // 0.1
@property (nonatomic) double basicStep;    // 1
@property (nonatomic) double largeStep;    // 5
@property (nonatomic) double muchoStep;    // 10
@property (nonatomic) double grandStep;    // 100
@property (nonatomic) double defaultValue; // what the slider held when it was initialised

/// YES at first: a click on the enabled slider makes it the window's first responder. With NO a
/// click leaves the focus where it is; the Tab key still reaches the slider.
@property (nonatomic) BOOL becomeFirstResponderOnClick;

/// Sets the defaults above and makes the slider its own target. Part of both initialisers; not to
/// be sent again.
- (void)sliderInit;

/// Sent after every change of value that the slider makes, and after every key and drag whether or
/// not they changed anything. Does nothing; made to be overridden. May be sent while the object is
/// still being initialised, because NSSlider sets its first value through setDoubleValue:.
- (void)valueDidChange;

/// The slider's own action: sends valueDidChange.
- (void)sliderChanged:(id)sender;

/// Sets the value as NSSlider does, then sends valueDidChange. Sends no action and does not write
/// to a bound object, also when the mouse is dragging the slider: see mouseDown:.
- (void)setDoubleValue:(double)value;

/// Sets the value as NSSlider does. This is how a bound object's changes arrive.
- (void)setObjectValue:(id)value;

/// What infoForBinding: tells of the value binding; nil without one.
- (NSDictionary*)getValueBinding;

/// Sets the value as the user would, through the binding or directly, and sends the action if
/// `value` differs from the value before.
///
/// Bound: `value` is clamped to minValue..maxValue and set with setValue:forKey: on the observed
/// object, then valueDidChange is sent. The key is the observed key path without a leading "self.";
/// other paths of more than one element are not followed. A binding that lacks its object or its
/// key path leaves the value alone, yet the action is sent.
/// Not bound: setDoubleValue: with `value` as it is. NSSlider's own limits apply.
///
/// The action goes to the target itself with performSelector:withObject:, never up the responder
/// chain: without a target nothing is sent.
- (void)setBoundObjectValue:(double)value;

/// setBoundObjectValue: with the present value plus `delta`.
- (void)changeValueBy:(double)delta;

/// Steps the value by the table above, then sends valueDidChange. A key event of no character or
/// of more than one only sends valueDidChange.
- (void)keyDown:(NSEvent*)event;

/// One click: posts the two notifications around NSSlider's tracking, which returns when the button
/// is let go, then sends valueDidChange. A disabled slider posts them too; nothing moves between.
/// Two clicks and more: sets defaultValue with setBoundObjectValue: and ends; no notification, no
/// tracking.
///
/// While NSSlider tracks, the action is sent once for the value that was pressed on and once for
/// each value that the mouse then gives the slider. A value set from outside meanwhile shows until
/// the mouse moves on; it is never sent, not even by the release of the button, and stays if the
/// mouse did not move again.
- (void)mouseDown:(NSEvent*)event;

@end
