#import "GuiTest.h"

#include <gmock/gmock.h>

#include <cstdio>
#include <cstdlib>
#include <unistd.h>

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
        if (std::getenv("DISPLAY") != nullptr && !testing::GTEST_FLAG(list_tests)) {
            [[NSUserDefaults standardUserDefaults] registerDefaults:@{
                // Alt is Option and Super is Command, as in tarvel-host.
                @"GSFirstAlternateKey" : @"Alt_L",
                @"GSFirstCommandKey" : @"Super_L",
                @"GSSuppressAppIcon" : @(YES),
                @"NSMenuInterfaceStyle" : @"NSWindows95InterfaceStyle",
            }];
            [NSApplication sharedApplication];
            NSSetUncaughtExceptionHandler(
                endProcess); // after sharedApplication, which sets its own
            [NSApp finishLaunching];
        }
        return RUN_ALL_TESTS();
    }
}
