#import <AudioUnit/AUCocoaUIView.h>

#include <AudioToolbox/AudioToolbox.h>

#include <gtest/gtest.h>
#include <objc/runtime.h>

#include <cstring>

/// The smallest factory there can be.
@interface CompatTestViewFactory : NSObject <AUCocoaUIBase>
@end

@implementation CompatTestViewFactory

- (unsigned)interfaceVersion
{
    return 0;
}

- (NSView*)uiViewForAudioUnit:(AudioUnit)inAudioUnit withSize:(NSSize)inPreferredSize
{
    (void)inAudioUnit;
    (void)inPreferredSize;
    return nil;
}

@end

namespace {

TEST(AUCocoaUIView, ProtocolIsKnownAtRunTimeWithBothItsMethods)
{
    Protocol* const protocol = @protocol(AUCocoaUIBase);
    EXPECT_TRUE([CompatTestViewFactory conformsToProtocol:protocol]);
    for (SEL method : { @selector(interfaceVersion), @selector(uiViewForAudioUnit:withSize:) }) {
        EXPECT_NE(protocol_getMethodDescription(protocol, method, YES, YES).name, nullptr);
    }
}

// Controls box events under this very text.
TEST(AUCocoaUIView, EventRecordHasTheTypeEncodingOfTheSystem)
{
    EXPECT_STREQ(@encode(AudioUnitEvent),
                 "{AudioUnitEvent=I(?={AudioUnitParameter=^{ComponentInstanceRecord}III}"
                 "{AudioUnitProperty=^{ComponentInstanceRecord}III})}");
}

TEST(AUCocoaUIView, EventRecordCanBeBoxed)
{
    @autoreleasepool {
        AudioUnitEvent event{};
        event.mEventType = kAudioUnitEvent_EndParameterChangeGesture;
        event.mArgument.mParameter = {nullptr, 4, 5, 6};
        AudioUnitEvent unboxed{};
        [[NSValue valueWithBytes:&event objCType:@encode(AudioUnitEvent)] getValue:&unboxed];
        EXPECT_EQ(std::memcmp(&event, &unboxed, sizeof event), 0);
    }
}

} // namespace
