#include <CoreFoundation/CoreFoundation.h>

#import <Foundation/Foundation.h>

#include <gmock/gmock.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

using testing::ElementsAre;

CFStringRef constantStringOfObjectiveC();
CFStringRef constantStringOfObjectiveC() { return CFSTR("Some text"); }

namespace {

using Bytes = std::vector<UInt8>;

CFStringRef _reference(NSString* text) { return reinterpret_cast<CFStringRef>(text); }

NSString* _object(CFStringRef text)
{
    return reinterpret_cast<NSString*>(const_cast<__CFString*>(text));
}

class CFStringTest : public testing::Test {
protected:
    CFStringTest() { pool = [[NSAutoreleasePool alloc] init]; }
    ~CFStringTest() override { [pool drain]; }

    // Foundation makes no string that begins with a byte-order mark or has half a pair, but it cuts
    // and joins them.
    static NSString* units(std::initializer_list<unichar> values)
    {
        NSMutableString* const text = [NSMutableString string];
        for (const unichar value : values) {
            const bool isHigh = value >= 0xD800 && value <= 0xDBFF;
            const bool isLow = value >= 0xDC00 && value <= 0xDFFF;
            const unichar around[] = {isLow ? unichar{0xD800} : unichar{'('}, value,
                                      isHigh ? unichar{0xDC00} : unichar{')'}};
            [text appendString:[[NSString stringWithCharacters:around length:3]
                                   substringWithRange:NSMakeRange(1, 1)]];
        }
        return text;
    }

    static CFStringRef create(const Bytes& bytes, CFStringEncoding encoding, bool external = false)
    {
        const CFStringRef made =
            CFStringCreateWithBytes(kCFAllocatorDefault, bytes.data(),
                                    static_cast<CFIndex>(bytes.size()), encoding, external);
        [_object(made) autorelease];
        return made;
    }

    struct Encoded {
        CFIndex units = 0;
        CFIndex used = 0;
        Bytes bytes;
    };

    static Encoded encode(NSString* text, CFStringEncoding encoding, UInt8 loss = 0,
                          CFIndex capacity = 100, bool external = false)
    {
        Encoded result;
        result.bytes.resize(static_cast<std::size_t>(capacity) + 1); // never without a buffer
        result.units =
            CFStringGetBytes(_reference(text), CFRangeMake(0, static_cast<CFIndex>([text length])),
                             encoding, loss, external, result.bytes.data(), capacity, &result.used);
        result.bytes.resize(static_cast<std::size_t>(result.used));
        return result;
    }

    NSAutoreleasePool* pool = nil;
};

// Creating ----------------------------------------------------------------------------------------

TEST_F(CFStringTest, IsAFoundationString)
{
    const CFStringRef made = create({'a', 'b'}, kCFStringEncodingUTF8);
    EXPECT_TRUE([_object(made) isEqualToString:@"ab"]);
    EXPECT_EQ(CFStringGetLength(_reference(@"abc")), 3);
}

TEST_F(CFStringTest, LengthAndCharactersCountUtf16Units)
{
    NSString* const text = units({'a', 0xD83C, 0xDFB5});
    EXPECT_EQ(CFStringGetLength(_reference(text)), 3);
    EXPECT_EQ(CFStringGetCharacterAtIndex(_reference(text), 1), 0xD83C);
    EXPECT_EQ(CFStringGetCharacterAtIndex(_reference(text), 2), 0xDFB5);
}

TEST_F(CFStringTest, CreatesFromEveryEncoding)
{
    struct {
        const char* name;
        CFStringEncoding encoding;
        Bytes bytes;
    } const rows[] = {
        {"UTF-8", kCFStringEncodingUTF8, {0xC3, 0xA9, 0xF0, 0x9F, 0x8E, 0xB5}},
        {"UTF-16", kCFStringEncodingUTF16, {0xE9, 0, 0x3C, 0xD8, 0xB5, 0xDF}},
        {"UTF-16LE", kCFStringEncodingUTF16LE, {0xE9, 0, 0x3C, 0xD8, 0xB5, 0xDF}},
        {"UTF-16BE", kCFStringEncodingUTF16BE, {0, 0xE9, 0xD8, 0x3C, 0xDF, 0xB5}},
        {"UTF-32", kCFStringEncodingUTF32, {0xE9, 0, 0, 0, 0xB5, 0xF3, 1, 0}},
        {"UTF-32LE", kCFStringEncodingUTF32LE, {0xE9, 0, 0, 0, 0xB5, 0xF3, 1, 0}},
        {"UTF-32BE", kCFStringEncodingUTF32BE, {0, 0, 0, 0xE9, 0, 1, 0xF3, 0xB5}},
    };
    NSString* const expected = units({0xE9, 0xD83C, 0xDFB5});
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_TRUE([_object(create(row.bytes, row.encoding)) isEqualToString:expected]);
    }
    EXPECT_TRUE([_object(create({'a', 'z'}, kCFStringEncodingASCII)) isEqualToString:@"az"]);
    EXPECT_TRUE([_object(create({0x8E}, kCFStringEncodingMacRoman)) isEqualToString:units({0xE9})]);
}

TEST_F(CFStringTest, EmptyBytesGiveAnEmptyString)
{
    for (const CFStringEncoding encoding : {kCFStringEncodingUTF8, kCFStringEncodingUTF32LE}) {
        const CFStringRef made = CFStringCreateWithBytes(nullptr, nullptr, 0, encoding, false);
        ASSERT_NE(made, nullptr);
        EXPECT_EQ(CFStringGetLength(made), 0);
        CFRelease(made);
    }
}

TEST_F(CFStringTest, InvalidBytesGiveNull)
{
    struct {
        const char* name;
        CFStringEncoding encoding;
        Bytes bytes;
    } const rows[] = {
        {"UTF-32 high surrogate", kCFStringEncodingUTF32LE, {0x00, 0xD8, 0, 0}},
        {"UTF-32 low surrogate", kCFStringEncodingUTF32LE, {0xFF, 0xDF, 0, 0}},
        {"UTF-32 surrogates in a pair",
         kCFStringEncodingUTF32LE,
         {0x3C, 0xD8, 0, 0, 0xB5, 0xDF, 0, 0}},
        {"above the last character", kCFStringEncodingUTF32LE, {0, 0, 0x11, 0}},
        {"UTF-32 cut", kCFStringEncodingUTF32LE, {'a', 0, 0}},
        {"UTF-16 lone surrogate", kCFStringEncodingUTF16LE, {'a', 0, 0x3C, 0xD8}},
        {"UTF-16 cut", kCFStringEncodingUTF16LE, {'a'}},
        {"UTF-8 cut", kCFStringEncodingUTF8, {0xC3}},
        {"UTF-8 stray", kCFStringEncodingUTF8, {'a', 0x80}},
        {"unknown encoding", 0x0BFF, {'a'}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(create(row.bytes, row.encoding), nullptr);
    }
}

TEST_F(CFStringTest, LastCharactersOfUtf32AreRead)
{
    EXPECT_TRUE([_object(create({0xFF, 0xFF, 0x10, 0}, kCFStringEncodingUTF32LE))
        isEqualToString:units({0xDBFF, 0xDFFF})]);
    EXPECT_TRUE([_object(create({0xFF, 0xD7, 0, 0, 0x00, 0xE0, 0, 0}, kCFStringEncodingUTF32LE))
        isEqualToString:units({0xD7FF, 0xE000})]);
}

TEST_F(CFStringTest, NamedOrderKeepsAByteOrderMark)
{
    const Bytes mark32{0xFF, 0xFE, 0, 0, 'a', 0, 0, 0};
    const Bytes mark16{0xFF, 0xFE, 'a', 0};
    for (const bool external : {false, true}) {
        EXPECT_TRUE([_object(create(mark32, kCFStringEncodingUTF32LE, external))
            isEqualToString:units({0xFEFF, 'a'})]);
        EXPECT_TRUE([_object(create(mark16, kCFStringEncodingUTF16LE, external))
            isEqualToString:units({0xFEFF, 'a'})]);
    }
}

TEST_F(CFStringTest, PlainEncodingFollowsAByteOrderMarkOfAnExternalText)
{
    EXPECT_TRUE(
        [_object(create({0xFF, 0xFE, 'a', 0}, kCFStringEncodingUTF16, true)) isEqualToString:@"a"]);
    EXPECT_TRUE(
        [_object(create({0xFE, 0xFF, 0, 'a'}, kCFStringEncodingUTF16, true)) isEqualToString:@"a"]);
    EXPECT_TRUE([_object(create({0, 0, 0xFE, 0xFF, 0, 0, 0, 'a'}, kCFStringEncodingUTF32, true))
        isEqualToString:@"a"]);
    EXPECT_TRUE([_object(create({0xFF, 0xFE, 'a', 0}, kCFStringEncodingUTF16, false))
        isEqualToString:units({0xFEFF, 'a'})]);
}

TEST_F(CFStringTest, NoCopyLeavesTheBytesWithTheNullDeallocatorsCaller)
{
    wchar_t text[] = L"caf\u00E9";
    const CFStringRef made =
        CFStringCreateWithBytesNoCopy(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(text), 16,
                                      kCFStringEncodingUTF32LE, false, kCFAllocatorNull);
    text[0] = L'?';
    EXPECT_TRUE([_object(made) isEqualToString:units({'c', 'a', 'f', 0xE9})]);
    CFRelease(made);
}

TEST_F(CFStringTest, NoCopyTakesOverBytesOnlyWhenAStringWasMade)
{
    auto* const good = static_cast<UInt8*>(std::malloc(1));
    *good = 'a';
    const CFStringRef made = CFStringCreateWithBytesNoCopy(nullptr, good, 1, kCFStringEncodingUTF8,
                                                           false, kCFAllocatorDefault);
    CFRelease(made); // a leak checker misses nothing: the bytes are freed

    auto* const bad = static_cast<UInt8*>(std::malloc(1));
    *bad = 0x80;
    EXPECT_EQ(CFStringCreateWithBytesNoCopy(nullptr, bad, 1, kCFStringEncodingUTF8, false,
                                            kCFAllocatorDefault),
              nullptr);
    std::free(bad);
}

// Encoding ----------------------------------------------------------------------------------------

TEST_F(CFStringTest, EncodesCharactersOfEveryLength)
{
    NSString* const text = units({'a', 0xE9, 0x20AC, 0xD83C, 0xDFB5});
    const Encoded utf8 = encode(text, kCFStringEncodingUTF8);
    EXPECT_EQ(utf8.units, 5);
    EXPECT_THAT(utf8.bytes, ElementsAre('a', 0xC3, 0xA9, 0xE2, 0x82, 0xAC, 0xF0, 0x9F, 0x8E, 0xB5));

    NSString* const pair = units({0xD83C, 0xDFB5});
    struct {
        const char* name;
        CFStringEncoding encoding;
        Bytes bytes;
    } const rows[] = {
        {"UTF-16", kCFStringEncodingUTF16, {0x3C, 0xD8, 0xB5, 0xDF}},
        {"UTF-16LE", kCFStringEncodingUTF16LE, {0x3C, 0xD8, 0xB5, 0xDF}},
        {"UTF-16BE", kCFStringEncodingUTF16BE, {0xD8, 0x3C, 0xDF, 0xB5}},
        {"UTF-32", kCFStringEncodingUTF32, {0xB5, 0xF3, 1, 0}},
        {"UTF-32LE", kCFStringEncodingUTF32LE, {0xB5, 0xF3, 1, 0}},
        {"UTF-32BE", kCFStringEncodingUTF32BE, {0, 1, 0xF3, 0xB5}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const Encoded encoded = encode(pair, row.encoding);
        EXPECT_EQ(encoded.units, 2);
        EXPECT_EQ(encoded.bytes, row.bytes);
    }
}

TEST_F(CFStringTest, StopsBeforeTheFirstCharacterThatDoesNotFitWhole)
{
    // One byte would be left for the "a" at the end, but it is not tried.
    NSString* const text = units({'a', 0xE9, 0xD83C, 0xDFB5, 'a'});
    struct {
        CFIndex capacity, used, units;
    } const rows[] = {{0, 0, 0}, {1, 1, 1}, {2, 1, 1}, {3, 3, 2}, {6, 3, 2}, {7, 7, 4}, {8, 8, 5}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.capacity);
        const Encoded encoded = encode(text, kCFStringEncodingUTF8, '?', row.capacity);
        EXPECT_EQ(encoded.used, row.used);
        EXPECT_EQ(encoded.units, row.units);
    }
}

TEST_F(CFStringTest, WritesNothingBehindWhatItReports)
{
    Bytes buffer(8, 0xEE);
    CFIndex used = 0;
    CFStringGetBytes(_reference(@"ab"), CFRangeMake(0, 2), kCFStringEncodingUTF8, 0, false,
                     buffer.data(), 8, &used);
    EXPECT_EQ(used, 2);
    EXPECT_THAT(buffer, ElementsAre('a', 'b', 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE));
}

TEST_F(CFStringTest, WithoutABufferTheNeededBytesAreCounted)
{
    CFIndex used = 0;
    EXPECT_EQ(CFStringGetBytes(_reference(units({'a', 0xE9})), CFRangeMake(0, 2),
                               kCFStringEncodingUTF8, 0, false, nullptr, 0, &used),
              2);
    EXPECT_EQ(used, 3);
    EXPECT_EQ(CFStringGetBytes(_reference(@"ab"), CFRangeMake(0, 2), kCFStringEncodingUTF8, 0,
                               false, nullptr, 0, nullptr),
              2);
}

TEST_F(CFStringTest, EncodesOnlyItsRange)
{
    Bytes buffer(8);
    CFIndex used = 0;
    EXPECT_EQ(CFStringGetBytes(_reference(@"abcd"), CFRangeMake(1, 2), kCFStringEncodingUTF8, 0,
                               false, buffer.data(), 8, &used),
              2);
    EXPECT_EQ(std::string(buffer.begin(), buffer.begin() + used), "bc");
}

TEST_F(CFStringTest, LossByteReplacesLoneSurrogatesAndZeroStopsThere)
{
    NSString* const text = units({'a', 0xD83C, 'b', 0xDFB5});
    const Encoded utf32 = encode(text, kCFStringEncodingUTF32LE, '?');
    EXPECT_EQ(utf32.units, 4);
    EXPECT_THAT(utf32.bytes, ElementsAre('a', 0, 0, 0, '?', 0, 0, 0, 'b', 0, 0, 0, '?', 0, 0, 0));
    const Encoded utf8 = encode(text, kCFStringEncodingUTF8, '?');
    EXPECT_EQ(utf8.units, 4);
    EXPECT_EQ(std::string(utf8.bytes.begin(), utf8.bytes.end()), "a?b?");
    for (const CFStringEncoding encoding : {kCFStringEncodingUTF8, kCFStringEncodingUTF32LE}) {
        EXPECT_EQ(encode(text, encoding, 0).units, 1);
    }
    EXPECT_EQ(encode(text, kCFStringEncodingUTF16LE, 0).used, 8);
}

TEST_F(CFStringTest, LossByteReplacesWhatAsciiDoesNotHave)
{
    NSString* const text = units({'a', 0xE9, 0xD83C, 0xDFB5, 'b'});
    const Encoded encoded = encode(text, kCFStringEncodingASCII, '?');
    EXPECT_EQ(encoded.units, 5);
    EXPECT_EQ(std::string(encoded.bytes.begin(), encoded.bytes.end()), "a??b");
    EXPECT_EQ(encode(text, kCFStringEncodingASCII, 0).units, 1);
}

TEST_F(CFStringTest, OnlyPlainEncodingsWriteAByteOrderMark)
{
    EXPECT_THAT(encode(@"a", kCFStringEncodingUTF16, 0, 100, true).bytes,
                ElementsAre(0xFF, 0xFE, 'a', 0));
    EXPECT_THAT(encode(@"a", kCFStringEncodingUTF32, 0, 100, true).bytes,
                ElementsAre(0xFF, 0xFE, 0, 0, 'a', 0, 0, 0));
    EXPECT_THAT(encode(@"a", kCFStringEncodingUTF16LE, 0, 100, true).bytes, ElementsAre('a', 0));
    EXPECT_THAT(encode(@"a", kCFStringEncodingUTF16BE, 0, 100, true).bytes, ElementsAre(0, 'a'));
    EXPECT_THAT(encode(@"a", kCFStringEncodingUTF8, 0, 100, true).bytes, ElementsAre('a'));
    EXPECT_THAT(encode(@"a", kCFStringEncodingUTF16, 0, 100, false).bytes, ElementsAre('a', 0));
    EXPECT_EQ(encode(@"a", kCFStringEncodingUTF16, 0, 1, true).units, 0);
}

TEST_F(CFStringTest, EncodingThatIsNotKnownConsumesNothing)
{
    EXPECT_EQ(encode(@"a", kCFStringEncodingMacRoman, '?').units, 0);
    EXPECT_EQ(encode(@"a", 0x0BFF, '?').used, 0);
}

TEST_F(CFStringTest, LongTextsAreEncodedWhole)
{
    NSString* const text = [@"" stringByPaddingToLength:5000
                                             withString:units({'a', 0xE9})
                                        startingAtIndex:0];
    const Encoded encoded = encode(text, kCFStringEncodingUTF8, 0, 10000);
    EXPECT_EQ(encoded.units, 5000);
    EXPECT_EQ(encoded.used, 7500);
}

// The direct pointer ------------------------------------------------------------------------------

TEST_F(CFStringTest, DirectPointerExistsForAsciiTextOnly)
{
    const CFStringRef made = create({'a', 0, 0, 0, 'b', 0, 0, 0}, kCFStringEncodingUTF32LE);
    for (const CFStringEncoding encoding :
         {kCFStringEncodingUTF8, kCFStringEncodingASCII, kCFStringEncodingMacRoman}) {
        EXPECT_STREQ(CFStringGetCStringPtr(made, encoding), "ab");
        EXPECT_STREQ(CFStringGetCStringPtr(CFSTR("constant"), encoding), "constant");
    }
    EXPECT_EQ(CFStringGetCStringPtr(made, kCFStringEncodingUTF16), nullptr);
    EXPECT_EQ(CFStringGetCStringPtr(_reference(units({'a', 0xE9})), kCFStringEncodingUTF8),
              nullptr);
    EXPECT_EQ(CFStringGetCStringPtr(_reference(units({0xE9})), kCFStringEncodingMacRoman), nullptr);
    EXPECT_STREQ(CFStringGetCStringPtr(CFSTR(""), kCFStringEncodingUTF8), "");
}

TEST_F(CFStringTest, ThreadWithoutAPoolGetsNoDirectPointerButTheBytes)
{
    const CFStringRef text = create({'a', 'b'}, kCFStringEncodingUTF8);
    const char* pointer = "not asked";
    CFIndex used = 0;
    UInt8 buffer[4] = {};
    std::thread([&] {
        pointer = CFStringGetCStringPtr(text, kCFStringEncodingUTF8);
        CFStringGetBytes(text, CFRangeMake(0, 2), kCFStringEncodingUTF8, '?', false, buffer, 4,
                         &used);
        GSUnregisterCurrentThread();
    }).join();
    EXPECT_EQ(pointer, nullptr);
    EXPECT_EQ(used, 2);
    EXPECT_STREQ(reinterpret_cast<const char*>(buffer), "ab");
}

// Changing ----------------------------------------------------------------------------------------

TEST_F(CFStringTest, MutableCopyIsTheCallersOwn)
{
    NSMutableString* const original = [NSMutableString stringWithString:@"abc"];
    const CFMutableStringRef copy = CFStringCreateMutableCopy(nullptr, 0, _reference(original));
    [original setString:@"x"];
    EXPECT_TRUE([_object(copy) isEqualToString:@"abc"]);
    CFRelease(copy);
}

TEST_F(CFStringTest, MutableCopyIsExact)
{
    for (NSString* original : {units({0xFEFF, 'a'}), units({'a', 0xD800}), units({0xDC00}), @""}) {
        const CFMutableStringRef copy = CFStringCreateMutableCopy(nullptr, 0, _reference(original));
        EXPECT_TRUE([_object(copy) isEqualToString:original]);
        CFRelease(copy);
    }
}

TEST_F(CFStringTest, NormalizesInPlaceInFourForms)
{
    // Letter with a combining mark, ligature, Hangul syllable.
    NSString* const composed = units({0xE9, 0xFB01, 0xAC00});
    struct {
        CFStringNormalizationForm form;
        NSString* expected;
    } const rows[] = {
        {kCFStringNormalizationFormD, units({'e', 0x301, 0xFB01, 0x1100, 0x1161})},
        {kCFStringNormalizationFormKD, units({'e', 0x301, 'f', 'i', 0x1100, 0x1161})},
        {kCFStringNormalizationFormC, units({0xE9, 0xFB01, 0xAC00})},
        {kCFStringNormalizationFormKC, units({0xE9, 'f', 'i', 0xAC00})},
        {4, composed},
        {-1, composed},
    };
    struct {
        const char* name;
        NSString* text;
        NSString* decomposed;
    } const edges[] = {
        {"byte-order mark", units({0xFEFF, 0xE9}), units({0xFEFF, 'e', 0x301})},
        {"longest", units({0xFDFA}), units({0xFDFA})},
        {"lone surrogate", units({0xE9, 0xD800}), units({0xE9, 0xD800})},
        {"empty", @"", @""},
    };
    for (const auto& row : edges) {
        SCOPED_TRACE(row.name);
        const CFMutableStringRef text = CFStringCreateMutableCopy(nullptr, 0, _reference(row.text));
        CFStringNormalize(text, kCFStringNormalizationFormD);
        EXPECT_TRUE([_object(text) isEqualToString:row.decomposed]);
        CFRelease(text);
    }
    const CFMutableStringRef longest =
        CFStringCreateMutableCopy(nullptr, 0, _reference(units({0xFDFA})));
    CFStringNormalize(longest, kCFStringNormalizationFormKD);
    EXPECT_EQ(CFStringGetLength(longest), 18);
    CFRelease(longest);
    for (const auto& row : rows) {
        SCOPED_TRACE(row.form);
        const CFMutableStringRef text = CFStringCreateMutableCopy(nullptr, 0, _reference(composed));
        CFStringNormalize(text, row.form);
        EXPECT_TRUE([_object(text) isEqualToString:row.expected]);
        CFRelease(text);
    }
    const CFMutableStringRef decomposed =
        CFStringCreateMutableCopy(nullptr, 0, _reference(units({'e', 0x301})));
    CFStringNormalize(decomposed, kCFStringNormalizationFormC);
    EXPECT_TRUE([_object(decomposed) isEqualToString:units({0xE9})]);
    CFRelease(decomposed);
}

// File names --------------------------------------------------------------------------------------

TEST_F(CFStringTest, FileNameIsUtf8AsComposed)
{
    char buffer[8];
    std::memset(buffer, 'x', sizeof buffer);
    EXPECT_TRUE(CFStringGetFileSystemRepresentation(_reference(units({'a', 0xE9})), buffer, 4));
    EXPECT_STREQ(buffer, "a\xC3\xA9");
    EXPECT_EQ(buffer[4], 'x');
}

TEST_F(CFStringTest, FileNameThatCannotBeWrittenGivesFalse)
{
    char buffer[8];
    EXPECT_FALSE(CFStringGetFileSystemRepresentation(_reference(@"abc"), buffer, 3));
    EXPECT_TRUE(CFStringGetFileSystemRepresentation(_reference(@"abc"), buffer, 4));
    EXPECT_FALSE(CFStringGetFileSystemRepresentation(_reference(@"abc"), buffer, 0));
    EXPECT_FALSE(CFStringGetFileSystemRepresentation(_reference(units({'a', 0, 'b'})), buffer, 8));
    EXPECT_FALSE(CFStringGetFileSystemRepresentation(_reference(units({0xD800})), buffer, 8));
}

TEST_F(CFStringTest, MaximumFileNameSizeDependsOnAscii)
{
    EXPECT_EQ(CFStringGetMaximumSizeOfFileSystemRepresentation(CFSTR("")), 1);
    EXPECT_EQ(CFStringGetMaximumSizeOfFileSystemRepresentation(CFSTR("abc")), 10);
    EXPECT_EQ(CFStringGetMaximumSizeOfFileSystemRepresentation(_reference(units({'a', 0xE9}))), 19);
}

} // namespace
