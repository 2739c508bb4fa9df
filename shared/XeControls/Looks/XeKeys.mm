#import "XeKeys.h"

#import <AppKit/NSEvent.h>
#import <Foundation/NSString.h>

namespace xenon {

namespace {

int _direction(NSEvent* event, unichar plus, unichar minus)
{
    NSString* const characters = [event charactersIgnoringModifiers];
    if ([characters length] != 1) {
        return 0;
    }
    const unichar key = [characters characterAtIndex:0];
    return (key == plus ? 1 : 0) - (key == minus ? 1 : 0);
}

} // namespace

int verticalArrow(NSEvent* event)
{
    return _direction(event, NSUpArrowFunctionKey, NSDownArrowFunctionKey);
}

int horizontalArrow(NSEvent* event)
{
    return _direction(event, NSRightArrowFunctionKey, NSLeftArrowFunctionKey);
}

} // namespace xenon
