#import "ExceptionsTry.h"

#import <Foundation/Foundation.h>

static void countCleanup(TryFrame** frame) { ++(*frame)->cleanups; }

void callInsideCatch(void (*function)(void*), void* argument, TryFrame* frame)
{
    __attribute__((cleanup(countCleanup), unused)) TryFrame* scope = frame;
    @try {
        function(argument);
    } @catch (NSException* exception) {
        (void)exception;
        ++frame->catches;
    }
}

void callInsideFinally(void (*function)(void*), void* argument, TryFrame* frame)
{
    @try {
        function(argument);
    } @finally {
        ++frame->finallies;
    }
}
