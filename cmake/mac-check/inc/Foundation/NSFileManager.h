// GNUstep's declarations, and what it has not of Apple's.
#pragma clang system_header
#include_next <Foundation/NSFileManager.h>

@interface NSFileManager (MacCheck)
- (BOOL)trashItemAtURL:(NSURL*)url resultingItemURL:(NSURL**)resultingURL error:(NSError**)error;
@end
