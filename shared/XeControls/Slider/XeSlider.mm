#import "XeSlider.h"

#import "XeSliderCell.h"

#import <AppKit/NSApplication.h>
#import <AppKit/NSCell.h>
#import <AppKit/NSEvent.h>
#import <AppKit/NSKeyValueBinding.h>
#import <AppKit/NSWindow.h>
#import <Foundation/NSDictionary.h>
#import <Foundation/NSKeyValueCoding.h>
#import <Foundation/NSNotification.h>
#import <Foundation/NSString.h>
#import <Foundation/NSValue.h>

#include <limits>

NSString* const XeSliderMouseDownNotification = @"XeSliderMouseDownNotification";
NSString* const XeSliderMouseUpNotification = @"XeSliderMouseUpNotification";

namespace {

// clang-format off
constexpr struct StepKey {
    unichar key;
    bool    takesPageStep;
    double  sign;
} kStepKeys[] = {
    { NSUpArrowFunctionKey,    false, +1 },
    { NSRightArrowFunctionKey, false, +1 },
    { NSDownArrowFunctionKey,  false, -1 },
    { NSLeftArrowFunctionKey,  false, -1 },
    { NSPageUpFunctionKey,     true,  +1 },
    { NSPageDownFunctionKey,   true,  -1 },
};
// clang-format on

const StepKey* _findStepKey(unichar key)
{
    for (const StepKey& row : kStepKeys) {
        if (row.key == key) {
            return &row;
        }
    }
    return nullptr;
}

// Column of the step tables. Only these two bits count: arrow and page keys set others themselves.
unsigned _stepColumn(NSUInteger modifierFlags)
{
    if ((modifierFlags & NSAlternateKeyMask) == 0) {
        return 0;
    }
    return (modifierFlags & NSCommandKeyMask) != 0 ? 2 : 1;
}

NSString* _withoutSelfPrefix(NSString* keyPath)
{
    NSString* const prefix = @"self.";
    return [keyPath hasPrefix:prefix] ? [keyPath substringFromIndex:[prefix length]] : keyPath;
}

} // namespace

@implementation XeSlider

@synthesize tinyStep;
@synthesize smallStep;
@synthesize basicStep;
@synthesize largeStep;
@synthesize muchoStep;
@synthesize grandStep;
@synthesize defaultValue;
@synthesize becomeFirstResponderOnClick;

+ (Class)cellClass
{
    return [XeSliderCell class];
}

- (id)initWithFrame:(NSRect)frame
{
    self = [super initWithFrame:frame];
    if (self != nil) {
        [self sliderInit];
    }
    return self;
}

- (id)initWithCoder:(NSCoder*)coder
{
    self = [super initWithCoder:coder];
    if (self != nil) {
        [self sliderInit];
    }
    return self;
}

- (void)dealloc
{
    xenon::Hover::forget(self);
    [super dealloc];
}

- (void)sliderInit
{
    tinyStep = 0.01;
    smallStep = 0.1;
    basicStep = 1.0;
    largeStep = 5.0;
    muchoStep = 10.0;
    grandStep = 100.0;
    defaultValue = [self doubleValue];
    becomeFirstResponderOnClick = YES;
    [self setTarget:self];
    [self setAction:@selector(sliderChanged:)];
}

- (void)valueDidChange
{
}

- (void)sliderChanged:(id)sender
{
    [self valueDidChange];
}

- (void)setDoubleValue:(double)value
{
    [super setDoubleValue:value];
    m_settledValue = [self doubleValue];
    [self valueDidChange];
}

- (void)setObjectValue:(id)value
{
    [super setObjectValue:value];
    m_settledValue = [self doubleValue];
}

// NSSlider repeats its action for events that moved nothing, and once more when the button is let
// go, whoever set the value since.
- (BOOL)sendAction:(SEL)action to:(id)target
{
    const double value = [self doubleValue];
    if (m_isTracking && value == m_settledValue) {
        return NO;
    }
    m_settledValue = value;
    return [super sendAction:action to:target];
}

- (NSDictionary*)getValueBinding
{
    return [self infoForBinding:NSValueBinding];
}

// Gives the value that was wanted of the bound object, which is the given one when the binding
// is incomplete and nothing was set.
- (double)_setValue:(double)value throughBinding:(NSDictionary*)binding
{
    NSString* const keyPath = [binding objectForKey:NSObservedKeyPathKey];
    id const object = [binding objectForKey:NSObservedObjectKey];
    if (keyPath == nil || object == nil) {
        return value;
    }
    double clamped = value;
    if (value > [self maxValue]) {
        clamped = [self maxValue];
    } else if ([self minValue] > value) {
        clamped = [self minValue];
    }
    [object setValue:@(clamped) forKey:_withoutSelfPrefix(keyPath)];
    [self valueDidChange];
    return clamped;
}

- (void)setBoundObjectValue:(double)value
{
    const double old = [self doubleValue];
    NSDictionary* const binding = [self getValueBinding];
    double wanted = value;
    if (binding == nil) {
        [self setDoubleValue:value];
    } else {
        wanted = [self _setValue:value throughBinding:binding];
    }
    const SEL action = [[self cell] action];
    if (old != wanted && action != nullptr) {
        [[self target] performSelector:action withObject:self];
    }
}

- (void)changeValueBy:(double)delta
{
    [self setBoundObjectValue:[self doubleValue] + delta];
}

- (double)_stepOfKey:(const StepKey&)row modifiers:(NSUInteger)modifierFlags
{
    const double arrowSteps[] = {basicStep, smallStep, tinyStep};
    const double pageSteps[] = {largeStep, muchoStep, grandStep};
    const double* const steps = row.takesPageStep ? pageSteps : arrowSteps;
    return row.sign * steps[_stepColumn(modifierFlags)];
}

// The slider's cell knows its direction only once it has been drawn; the frame always does.
- (BOOL)_isHigherThanWide
{
    const NSSize size = [self frame].size;
    return size.height > size.width;
}

- (void)_handleKey:(unichar)key ofEvent:(NSEvent*)event
{
    if (const StepKey* const row = _findStepKey(key)) {
        [self changeValueBy:[self _stepOfKey:*row modifiers:[event modifierFlags]]];
    } else if (key == NSHomeFunctionKey) {
        [self setBoundObjectValue:[self _isHigherThanWide] ? [self maxValue] : [self minValue]];
    } else if (key == NSEndFunctionKey) {
        [self setBoundObjectValue:[self _isHigherThanWide] ? [self minValue] : [self maxValue]];
    } else {
        [super keyDown:event];
    }
}

- (void)keyDown:(NSEvent*)event
{
    NSString* const characters = [event charactersIgnoringModifiers];
    if ([characters length] == 1) {
        [self _handleKey:[characters characterAtIndex:0] ofEvent:event];
    }
    [self valueDidChange];
}

// A window offers the focus to any view that is clicked. This one takes it by itself or not at all.
- (BOOL)acceptsFirstResponder
{
    const BOOL isPress = [[NSApp currentEvent] type] == NSLeftMouseDown;
    return (becomeFirstResponderOnClick || !isPress) && [super acceptsFirstResponder];
}

- (BOOL)becomeFirstResponder
{
    [self setNeedsDisplay:YES];
    return [super becomeFirstResponder];
}

- (BOOL)resignFirstResponder
{
    [self setNeedsDisplay:YES];
    return [super resignFirstResponder];
}

- (void)mouseDown:(NSEvent*)event
{
    if ([self isEnabled] && becomeFirstResponderOnClick) {
        [[self window] makeFirstResponder:self];
    }
    if ([event clickCount] >= 2) {
        [self setBoundObjectValue:defaultValue];
        return;
    }
    NSNotificationCenter* const center = [NSNotificationCenter defaultCenter];
    [center postNotificationName:XeSliderMouseDownNotification object:self];
    m_settledValue = std::numeric_limits<double>::quiet_NaN();
    m_isTracking = YES;
    [super mouseDown:event];
    m_isTracking = NO;
    [center postNotificationName:XeSliderMouseUpNotification object:self];
    [self valueDidChange];
}

@end
