#include <CoreFoundation/CoreFoundation.h>

#import <Foundation/Foundation.h>

#include <gmock/gmock.h>

#include <cctype>
#include <cmath>
#include <ctime>
#include <set>
#include <string>

namespace {

class CFObjects : public testing::Test {
protected:
    CFObjects() { pool = [[NSAutoreleasePool alloc] init]; }
    ~CFObjects() override { [pool drain]; }

    NSAutoreleasePool* pool = nil;
};

TEST_F(CFObjects, RetainAndReleaseCountReferences)
{
    NSObject* const object = [[NSObject alloc] init];
    EXPECT_EQ(CFRetain(object), object);
    EXPECT_EQ([object retainCount], 2U);
    CFRelease(object);
    EXPECT_EQ([object retainCount], 1U);
    [object release];
}

#ifndef NDEBUG
TEST_F(CFObjects, RetainAndReleaseOfNullStopADebugBuild)
{
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    EXPECT_DEATH(CFRelease(nullptr), "CFRelease of null");
    EXPECT_DEATH(CFRetain(nullptr), "CFRetain of null");
}
#endif

TEST_F(CFObjects, ArrayRetainsAndLendsItsValues)
{
    NSString* const text = [[NSMutableString alloc] initWithString:@"kept"];
    const void* values[] = {text, CFSTR("second")};
    const CFArrayRef array = CFArrayCreate(nullptr, values, 2, &kCFTypeArrayCallBacks);
    EXPECT_EQ([text retainCount], 2U);
    EXPECT_EQ(CFArrayGetCount(array), 2);
    EXPECT_EQ(CFArrayGetValueAtIndex(array, 0), text);
    EXPECT_EQ(CFArrayGetValueAtIndex(array, 1), CFSTR("second"));
    EXPECT_EQ([text retainCount], 2U);
    CFRelease(array);
    EXPECT_EQ([text retainCount], 1U);
    [text release];
}

TEST_F(CFObjects, ArrayMayBeEmptyAndIsOfObjectsOnly)
{
    const CFArrayRef empty = CFArrayCreate(nullptr, nullptr, 0, &kCFTypeArrayCallBacks);
    EXPECT_EQ(CFArrayGetCount(empty), 0);
    CFRelease(empty);
    EXPECT_EQ(CFArrayCreate(nullptr, nullptr, 0, nullptr), nullptr);
}

TEST_F(CFObjects, FoundationArrayServesAsItIs)
{
    NSArray* const array = @[ @"a", @"b", @"c" ];
    EXPECT_EQ(CFArrayGetCount(reinterpret_cast<CFArrayRef>(array)), 3);
}

std::string _path(CFURLRef url, CFIndex capacity)
{
    std::string buffer(static_cast<std::size_t>(capacity), 'x');
    if (!CFURLGetFileSystemRepresentation(url, true, reinterpret_cast<UInt8*>(buffer.data()),
                                          capacity)) {
        return "does not fit";
    }
    return buffer.c_str();
}

TEST_F(CFObjects, UrlGoesFromPathToPath)
{
    const std::string path = "/tmp/Caf\xC3\xA9 100%.bundle";
    const CFURLRef url = CFURLCreateFromFileSystemRepresentation(
        nullptr, reinterpret_cast<const UInt8*>(path.data()), static_cast<CFIndex>(path.size()),
        true);
    EXPECT_TRUE([reinterpret_cast<NSURL*>(const_cast<__CFURL*>(url)) isFileURL]);
    const auto length = static_cast<CFIndex>(path.size());
    EXPECT_EQ(_path(url, 100), path);
    EXPECT_EQ(_path(url, length + 1), path);
    EXPECT_EQ(_path(url, length), "does not fit");
    CFRelease(url);
}

TEST_F(CFObjects, UrlNeedsAReadablePathAndAFile)
{
    const UInt8 bad[] = {'/', 0x80};
    EXPECT_EQ(CFURLCreateFromFileSystemRepresentation(nullptr, bad, 2, false), nullptr);
    EXPECT_EQ(CFURLCreateFromFileSystemRepresentation(nullptr, bad, 0, false), nullptr);
    NSURL* const web = [NSURL URLWithString:@"http://localhost/x"];
    EXPECT_EQ(_path(reinterpret_cast<CFURLRef>(web), 100), "does not fit");
}

TEST_F(CFObjects, RunLoopsAreTheThreads)
{
    EXPECT_EQ(reinterpret_cast<NSRunLoop*>(CFRunLoopGetCurrent()), [NSRunLoop currentRunLoop]);
    EXPECT_EQ(CFRunLoopGetMain(), CFRunLoopGetCurrent());
}

TEST_F(CFObjects, DefaultModeIsFoundations)
{
    EXPECT_TRUE([reinterpret_cast<NSString*>(const_cast<__CFString*>(kCFRunLoopDefaultMode))
        isEqualToString:NSDefaultRunLoopMode]);
}

TEST_F(CFObjects, TimeCountsFromTheYear2001)
{
    const double expected = std::difftime(std::time(nullptr), 978307200);
    EXPECT_NEAR(CFAbsoluteTimeGetCurrent(), expected, 2);
}

TEST_F(CFObjects, TimeZoneTellsTheOffsetOfTheMomentAskedFor)
{
    NSTimeZone* const berlin = [NSTimeZone timeZoneWithName:@"Europe/Berlin"];
    NSTimeZone* const newYork = [NSTimeZone timeZoneWithName:@"America/New_York"];
    ASSERT_NE(berlin, nil);
    constexpr CFAbsoluteTime kJanuary = 599529600; // 2020-01-01
    constexpr CFAbsoluteTime kJuly = 615254400;    // 2020-07-01
    const auto offset = [](NSTimeZone* zone, CFAbsoluteTime at) {
        return CFTimeZoneGetSecondsFromGMT(reinterpret_cast<CFTimeZoneRef>(zone), at);
    };
    EXPECT_EQ(offset(berlin, kJanuary), 3600);
    EXPECT_EQ(offset(berlin, kJuly), 7200);
    EXPECT_EQ(offset(newYork, kJanuary), -18000);
    EXPECT_EQ(offset(newYork, kJuly), -14400);
}

TEST_F(CFObjects, SystemTimeZoneIsTheCallers)
{
    const CFTimeZoneRef zone = CFTimeZoneCopySystem();
    ASSERT_NE(zone, nullptr);
    EXPECT_TRUE([reinterpret_cast<NSTimeZone*>(const_cast<__CFTimeZone*>(zone))
        isEqual:[NSTimeZone systemTimeZone]]);
    CFRelease(zone);
}

std::string _newIdentifier()
{
    const CFUUIDRef uuid = CFUUIDCreate(nullptr);
    const CFStringRef text = CFUUIDCreateString(nullptr, uuid);
    const std::string result =
        [reinterpret_cast<NSString*>(const_cast<__CFString*>(text)) UTF8String];
    CFRelease(text);
    CFRelease(uuid);
    return result;
}

TEST_F(CFObjects, IdentifiersAreRandomOnesOfVersion4)
{
    std::set<std::string> seen;
    for (int count = 0; count < 200; ++count) {
        const std::string text = _newIdentifier();
        SCOPED_TRACE(text);
        ASSERT_EQ(text.size(), 36U);
        for (std::size_t at = 0; at < text.size(); ++at) {
            const bool isDash = at == 8 || at == 13 || at == 18 || at == 23;
            const bool isUpperHex = std::isxdigit(static_cast<unsigned char>(text[at])) != 0 &&
                                    std::islower(static_cast<unsigned char>(text[at])) == 0;
            ASSERT_TRUE(isDash ? text[at] == '-' : isUpperHex);
        }
        EXPECT_EQ(text[14], '4');
        EXPECT_NE(std::string("89AB").find(text[19]), std::string::npos);
        seen.insert(text);
    }
    EXPECT_EQ(seen.size(), 200U);
}

} // namespace
