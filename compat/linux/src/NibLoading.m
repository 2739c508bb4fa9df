// The library counts objects in every program, but its header tells released ones nothing of it.
#undef NDEBUG

#import "NibLoading.h"

#import <Foundation/NSDebug.h>

#include <objc/runtime.h>
#include <string.h>

// AppKit is no part of this library, so its classes are named here only. The run time keeps a
// category until its class comes and sends it `load` then: the order in which libraries are loaded
// does not matter, and nothing happens in a program without AppKit.
@interface GSXibKeyedUnarchiver : NSCoder
+ (BOOL)checkXib5:(NSData*)description;
@end

@interface GSXibKeyedUnarchiver (AudioUnitCompat)
@end

@interface NSCustomView : NSObject
- (void)setClassName:(NSString*)name;
- (void)setExtension:(NSString*)extension;
@end

@interface NSCustomView (AudioUnitCompat)
@end

// --- which format a description has --------------------------------------------------------------

typedef BOOL (*FormatCheck)(id, SEL, NSData*);

// GNUstep's answer, with the release that it lacks.
static BOOL _isXib5(id loader, SEL selector, NSData* description)
{
    (void)loader;
    (void)selector;
    NSXMLDocument* const document = [[NSXMLDocument alloc] initWithData:description
                                                                options:0
                                                                  error:NULL];
    BOOL found = NO;
    @autoreleasepool {
        found = [[document nodesForXPath:@"/document" error:NULL] count] != 0;
    }
    [document release];
    return found;
}

static BOOL _takesDataAndGivesBool(Method method)
{
    if (method == NULL || method_getNumberOfArguments(method) != 3) {
        return NO;
    }
    char result[2];
    char argument[2];
    method_getReturnType(method, result, sizeof result);
    method_getArgumentType(method, 2, argument, sizeof argument);
    return result[0] == @encode(BOOL)[0] && argument[0] == @encode(id)[0];
}

// Tried on a description of one element; where the flaw is, the tree of this one stays.
static BOOL _keepsItsDocument(Class loader, Method method)
{
    const char text[] = "<document/>";
    const BOOL wasCounting = GSDebugAllocationActive(YES);
    const int before = GSDebugAllocationCount([NSXMLDocument class]);
    @autoreleasepool {
        NSData* const description = [NSData dataWithBytes:text length:strlen(text)];
        const FormatCheck check = (FormatCheck)method_getImplementation(method);
        check(loader, method_getName(method), description);
    }
    const int after = GSDebugAllocationCount([NSXMLDocument class]);
    GSDebugAllocationActive(wasCounting);
    return after > before;
}

BOOL AudioUnitCompatRepairFormatCheck(Class loader)
{
    const Method method = class_getClassMethod(loader, @selector(checkXib5:));
    if (!_takesDataAndGivesBool(method) || !_keepsItsDocument(loader, method)) {
        return NO;
    }
    method_setImplementation(method, (IMP)_isXib5);
    return YES;
}

static IMP s_unexamined;

// The first loading decides. When the class is loaded it is too early to try it: the frameworks
// have not set themselves up by then.
static BOOL _examineFirst(id loader, SEL selector, NSData* description)
{
    method_setImplementation(class_getClassMethod(loader, selector), s_unexamined);
    AudioUnitCompatRepairFormatCheck(loader);
    return [loader checkXib5:description];
}

@implementation GSXibKeyedUnarchiver (AudioUnitCompat)

+ (void)load
{
    const Method method = class_getClassMethod(self, @selector(checkXib5:));
    if (_takesDataAndGivesBool(method)) {
        s_unexamined = method_setImplementation(method, (IMP)_examineFirst);
    }
}

@end

// --- the texts of a custom view ------------------------------------------------------------------

static void _deallocTexts(id self, SEL selector)
{
    [self setClassName:nil];
    [self setExtension:nil];
    Class next = object_getClass(self);
    while (class_getMethodImplementation(next, selector) != (IMP)_deallocTexts) {
        next = class_getSuperclass(next); // a subclass's own, which sent this
    }
    while (class_getMethodImplementation(next, selector) == (IMP)_deallocTexts) {
        next = class_getSuperclass(next);
    }
    class_getMethodImplementation(next, selector)(self, selector);
}

BOOL AudioUnitCompatRepairCustomView(Class placeholder)
{
    // A method is added only where the class itself has none.
    return class_getInstanceMethod(placeholder, @selector(setClassName:)) != NULL &&
           class_getInstanceMethod(placeholder, @selector(setExtension:)) != NULL &&
           class_addMethod(placeholder, @selector(dealloc), (IMP)_deallocTexts, "v16@0:8");
}

@implementation NSCustomView (AudioUnitCompat)

+ (void)load
{
    AudioUnitCompatRepairCustomView(self);
}

@end
