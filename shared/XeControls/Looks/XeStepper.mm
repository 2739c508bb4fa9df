#import "XeStepper.h"

#import "XeKeys.h"
#import "XeStepperCell.h"

#import <AppKit/NSEvent.h>

#include <algorithm>

@implementation XeStepper

+ (Class)cellClass
{
    return [XeStepperCell class];
}

- (void)dealloc
{
    xenon::Hover::forget(self);
    [super dealloc];
}

- (BOOL)acceptsFirstResponder
{
    return [self isEnabled];
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

- (void)stepBy:(NSInteger)steps
{
    const NSInteger old = [self integerValue];
    const double wanted = static_cast<double>(old) + [self increment] * static_cast<double>(steps);
    const double allowed = std::min(std::max(wanted, [self minValue]), [self maxValue]);
    [self setIntegerValue:static_cast<NSInteger>(allowed)];
    if ([self integerValue] != old) {
        [self sendAction:[self action] to:[self target]];
    }
}

- (void)keyDown:(NSEvent*)event
{
    const int direction = xenon::verticalArrow(event);
    if (direction == 0 || ![self isEnabled]) {
        [super keyDown:event];
        return;
    }
    [self stepBy:direction];
}

@end
