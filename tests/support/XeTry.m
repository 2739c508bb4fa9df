#import "XeTry.h"

#import <Foundation/Foundation.h>

int XeTry(void (*function)(void*), void* argument, char* text, size_t capacity)
{
    @try {
        function(argument);
    } @catch (NSException* exception) {
        snprintf(text, capacity, "%s: %s", [[exception name] UTF8String],
                 [[exception reason] UTF8String]);
        return 1;
    }
    return 0;
}
