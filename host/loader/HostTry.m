#import "HostTry.h"

NSString* HostTry(void (*function)(void*), void* context)
{
    @try {
        function(context);
    } @catch (NSException* exception) {
        return [NSString stringWithFormat:@"%@: %@", [exception name], [exception reason]];
    }
    return nil;
}
