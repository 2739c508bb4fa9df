#import "GuiTest.h"

#include <gmock/gmock.h>

#include <objc/runtime.h>

#include <cstdio>
#include <cstdlib>
#include <unistd.h>

static IMP s_raise;

// GoogleTest knows of an exception of this kind only that it is none of C++.
static void tellAndRaise(NSException* exception, SEL selector)
{
    std::fprintf(stderr, "raised: %s\n", [[exception description] UTF8String]);
    reinterpret_cast<void (*)(NSException*, SEL)>(s_raise)(exception, selector);
}

// Without this an uncaught exception opens a modal alert, and the test would wait for ever.
static void endProcess(NSException* exception)
{
    std::fprintf(stderr, "uncaught: %s\n", [[exception description] UTF8String]);
    _exit(70);
}

int main(int argc, char** argv)
{
    testing::InitGoogleMock(&argc, argv);
    @autoreleasepool {
        s_raise =
            method_setImplementation(class_getInstanceMethod([NSException class], @selector(raise)),
                                     reinterpret_cast<IMP>(tellAndRaise));
        if (std::getenv("DISPLAY") != nullptr && !testing::GTEST_FLAG(list_tests)) {
            [[NSUserDefaults standardUserDefaults] registerDefaults:@{
                // Alt is Option and Super is Command, as in tarvel-host.
                @"GSFirstAlternateKey" : @"Alt_L",
                @"GSFirstCommandKey" : @"Super_L",
                @"GSSuppressAppIcon" : @(YES),
                @"NSMenuInterfaceStyle" : @"NSWindows95InterfaceStyle",
            }];
            // Where tarvel-host's own application is linked in, the test runs in it.
            Class const own = NSClassFromString(@"HostApplication");
            [(own != Nil ? own : [NSApplication class]) sharedApplication];
            NSSetUncaughtExceptionHandler(
                endProcess); // after sharedApplication, which sets its own
            [NSApp finishLaunching];
        }
        return RUN_ALL_TESTS();
    }
}
