#include "XeString.h"

#import <Foundation/Foundation.h>

#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

// The out-of-memory test asks for more than any allocator has.
extern "C" const char* __asan_default_options();
extern "C" const char* __asan_default_options() { return "allocator_may_return_null=1"; }

/// Claims a length that no buffer can have.
@interface EndlessString : NSString
@end

@implementation EndlessString

- (NSUInteger)length
{
    return NSUInteger{1} << 62;
}

- (unichar)characterAtIndex:(NSUInteger)index
{
    (void)index;
    return 0xE9;
}

@end

namespace {

// Unit by unit, because a whole array with a lone surrogate would be refused.
_XeString<char> fromUnits(std::initializer_list<unichar> units)
{
    @autoreleasepool {
        NSMutableString* const text = [NSMutableString string];
        for (const unichar unit : units) {
            [text appendFormat:@"%C", unit];
        }
        EXPECT_EQ([text length], units.size());
        return _XeString<char>(reinterpret_cast<CFStringRef>(text));
    }
}

TEST(StringFromCFString, NullGivesTheEmptyString)
{
    EXPECT_EQ(_XeString<char>(CFStringRef{nullptr}), "");
}

// Inside an autorelease pool there is a direct pointer to ASCII text, outside there is none.
TEST(StringFromCFString, AsciiIsCopiedWholeOnEitherWay)
{
    EXPECT_EQ(_XeString<char>(CFSTR("plain text")), "plain text");
    @autoreleasepool {
        EXPECT_EQ(_XeString<char>(CFSTR("plain text")), "plain text");
        EXPECT_EQ(_XeString<char>(CFSTR("")), "");
    }
}

TEST(StringFromCFString, OtherTextIsCutToAsManyBytesAsItHasUtf16Units)
{
    const struct {
        std::initializer_list<unichar> units;
        const char* bytes;
    } kRows[] = {
        {{0xE9}, ""},              // two bytes, one unit
        {{'a', 0xE9}, "a"},        //
        {{0xE9, 'a'}, "\xC3\xA9"}, //
        {{'a', 0xE9, 'b', 0x20AC},
         "a\xC3\xA9"
         "b"},                                // three bytes left out
        {{0x20AC, 'a'}, ""},                  // a shorter one behind is not tried
        {{0x20AC, 'a', 'b'}, "\xE2\x82\xAC"}, //
        {{0xD83C, 0xDFB5}, ""},               // four bytes, two units
        {{'a', 'b', 0xD83C, 0xDFB5}, "ab"},   //
        {{0xD83C, 0xDFB5, 'a', 'b'}, "\xF0\x9F\x8E\xB5"},
    };
    for (const auto& row : kRows) {
        SCOPED_TRACE(testing::PrintToString(row.units));
        EXPECT_EQ(fromUnits(row.units), row.bytes);
    }
}

TEST(StringFromCFString, LoneSurrogateBecomesAQuestionMark)
{
    EXPECT_EQ(fromUnits({'a', 0xD800, 'b'}), "a?b");
    EXPECT_EQ(fromUnits({0xDC00}), "?");
}

TEST(StringFromCFString, IsEmptyWhenThereIsNoMemoryForIt)
{
    EndlessString* const text = [[EndlessString alloc] init];
    EXPECT_EQ(_XeString<char>(reinterpret_cast<CFStringRef>(text)), "");
    [text release];
}

} // namespace
