#include <CoreFoundation/CFString.h>

#include "UnicodeBytes.h"

#import <Foundation/Foundation.h>

#include <unicode/unorm2.h>

#include <bit>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <map>
#include <mutex>
#include <string>
#include <vector>

using namespace audiounit_compat;

namespace {

NSString* _string(CFStringRef string)
{
    return reinterpret_cast<NSString*>(const_cast<__CFString*>(string));
}

CFStringRef _reference(NSString* string) { return reinterpret_cast<CFStringRef>(string); }

struct EncodingRow {
    CFStringEncoding encoding;
    NSStringEncoding foundation;
};

constexpr EncodingRow kByteEncodings[] = {
    {kCFStringEncodingMacRoman, NSMacOSRomanStringEncoding},
    {kCFStringEncodingASCII, NSASCIIStringEncoding},
    {kCFStringEncodingUTF8, NSUTF8StringEncoding},
};

NSString* _createFromBytes(const UInt8* bytes, CFIndex byteCount, CFStringEncoding encoding)
{
    for (const EncodingRow& row : kByteEncodings) {
        if (row.encoding == encoding) {
            return [[NSString alloc] initWithBytes:bytes length:byteCount encoding:row.foundation];
        }
    }
    return nil;
}

// Not initWithCharacters:, which takes a byte-order mark at the start for one.
NSString* _createFromUnits(const UniChar* units, std::size_t count)
{
    constexpr NSStringEncoding kNative = std::endian::native == std::endian::big
                                             ? NSUTF16BigEndianStringEncoding
                                             : NSUTF16LittleEndianStringEncoding;
    return [[NSString alloc] initWithBytes:units length:count * sizeof(UniChar) encoding:kNative];
}

// The characters of a range as an array, copied only when the range is long.
class Units {
public:
    Units(CFStringRef string, CFRange range) : m_length(static_cast<std::size_t>(range.length))
    {
        if (m_length > kShort) {
            m_long.resize(m_length);
        }
        [_string(string) getCharacters:m_length > kShort ? m_long.data() : m_short
                                 range:NSMakeRange(range.location, range.length)];
    }
    Units(const Units&) = delete;
    Units& operator=(const Units&) = delete;

    const UniChar* data() const { return m_length > kShort ? m_long.data() : m_short; }
    std::size_t length() const { return m_length; }

private:
    static constexpr std::size_t kShort = 256;
    std::size_t m_length;
    UniChar m_short[kShort];
    std::vector<UniChar> m_long;
};

// In the order of the forms' values.
constexpr const UNormalizer2* (*kNormalizers[])(UErrorCode*) = {
    unorm2_getNFDInstance, unorm2_getNFKDInstance, unorm2_getNFCInstance, unorm2_getNFKCInstance};

// No character becomes more than 18 UTF-16 units in any form (UAX #15, table of expansion factors).
constexpr std::size_t kMaximumGrowth = 18;

bool _isAscii(CFStringRef string)
{
    return [_string(string) canBeConvertedToEncoding:NSASCIIStringEncoding];
}

} // namespace

CFStringRef __CFStringMakeConstantString(const char* text)
{
    static std::mutex mutex;
    static auto* const strings = new std::map<std::string, CFStringRef, std::less<>>;
    const std::lock_guard lock(mutex);
    const auto found = strings->find(text);
    if (found != strings->end()) {
        return found->second;
    }
    const CFStringRef made = _reference([[NSString alloc] initWithUTF8String:text]);
    strings->emplace(text, made);
    return made;
}

CFStringRef CFStringCreateWithBytes(CFAllocatorRef, const UInt8* bytes, CFIndex byteCount,
                                    CFStringEncoding encoding, Boolean isExternalRepresentation)
{
    @autoreleasepool {
        const auto form = unitFormOf(encoding);
        if (!form) {
            return _reference(_createFromBytes(bytes, byteCount, encoding));
        }
        const auto units = decodeUnits(*form, isExternalRepresentation, bytes,
                                       static_cast<std::size_t>(byteCount));
        return units ? _reference(_createFromUnits(units->data(), units->size())) : nullptr;
    }
}

CFStringRef CFStringCreateWithBytesNoCopy(CFAllocatorRef allocator, const UInt8* bytes,
                                          CFIndex byteCount, CFStringEncoding encoding,
                                          Boolean isExternalRepresentation,
                                          CFAllocatorRef contentsDeallocator)
{
    const CFStringRef made =
        CFStringCreateWithBytes(allocator, bytes, byteCount, encoding, isExternalRepresentation);
    if (made != nullptr && contentsDeallocator != kCFAllocatorNull) {
        std::free(const_cast<UInt8*>(bytes));
    }
    return made;
}

// Not mutableCopy, which drops a byte-order mark at the start and fails on half a pair.
CFMutableStringRef CFStringCreateMutableCopy(CFAllocatorRef, CFIndex, CFStringRef string)
{
    NSMutableString* const copy = [[NSMutableString alloc] init];
    [copy appendString:_string(string)];
    return reinterpret_cast<CFMutableStringRef>(copy);
}

CFIndex CFStringGetLength(CFStringRef string)
{
    return static_cast<CFIndex>([_string(string) length]);
}

UniChar CFStringGetCharacterAtIndex(CFStringRef string, CFIndex index)
{
    return [_string(string) characterAtIndex:index];
}

CFIndex CFStringGetBytes(CFStringRef string, CFRange range, CFStringEncoding encoding,
                         UInt8 lossByte, Boolean isExternalRepresentation, UInt8* buffer,
                         CFIndex maxBufferLength, CFIndex* usedBufferLength)
{
    const Units units(string, range);
    const EncodeResult result =
        encodeUnits(units.data(), units.length(),
                    {encoding, lossByte, isExternalRepresentation != 0, buffer, maxBufferLength});
    if (usedBufferLength != nullptr) {
        *usedBufferLength = result.bytesUsed;
    }
    return result.unitsRead;
}

const char* CFStringGetCStringPtr(CFStringRef string, CFStringEncoding encoding)
{
    const bool containsAscii = encoding == kCFStringEncodingUTF8 ||
                               encoding == kCFStringEncodingASCII ||
                               encoding == kCFStringEncodingMacRoman;
    if (!containsAscii || [NSAutoreleasePool currentPool] == nil || !_isAscii(string)) {
        return nullptr;
    }
    return [_string(string) UTF8String];
}

// ICU itself, because Foundation's functions over it drop a byte-order mark at the start.
void CFStringNormalize(CFMutableStringRef string, CFStringNormalizationForm form)
{
    if (form < 0 || form >= static_cast<CFStringNormalizationForm>(std::size(kNormalizers))) {
        return;
    }
    const Units units(string, CFRangeMake(0, CFStringGetLength(string)));
    UErrorCode error = U_ZERO_ERROR;
    const UNormalizer2* const normalizer = kNormalizers[form](&error);
    std::vector<UniChar> normal(units.length() * kMaximumGrowth);
    const int32_t length = unorm2_normalize(
        normalizer, reinterpret_cast<const UChar*>(units.data()),
        static_cast<int32_t>(units.length()), reinterpret_cast<UChar*>(normal.data()),
        static_cast<int32_t>(normal.size()), &error);
    if (U_FAILURE(error)) {
        return;
    }
    NSString* const result = _createFromUnits(normal.data(), static_cast<std::size_t>(length));
    if (result != nil) {
        [reinterpret_cast<NSMutableString*>(string) setString:result];
        [result release];
    }
}

Boolean CFStringGetFileSystemRepresentation(CFStringRef string, char* buffer,
                                            CFIndex maxBufferLength)
{
    const CFIndex length = CFStringGetLength(string);
    CFIndex used = 0;
    const CFIndex read =
        CFStringGetBytes(string, CFRangeMake(0, length), kCFStringEncodingUTF8, 0, false,
                         reinterpret_cast<UInt8*>(buffer), maxBufferLength - 1, &used);
    if (read != length || maxBufferLength < 1 || std::memchr(buffer, 0, used) != nullptr) {
        return false;
    }
    buffer[used] = 0;
    return true;
}

CFIndex CFStringGetMaximumSizeOfFileSystemRepresentation(CFStringRef string)
{
    return (_isAscii(string) ? 3 : 9) * CFStringGetLength(string) + 1;
}
