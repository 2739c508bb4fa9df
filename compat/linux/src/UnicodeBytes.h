#pragma once

#include <CoreFoundation/CFString.h>

#include <cstddef>
#include <optional>
#include <vector>

namespace audiounit_compat {

/// How UTF-16 and UTF-32 lie in memory.
struct UnitForm {
    std::size_t unitSize; // bytes, 2 or 4
    bool bigEndian;
    bool orderIsNamed; // by the encoding; no byte-order mark is read or written then
};

/// Nothing for encodings that are no UTF-16 or UTF-32.
std::optional<UnitForm> unitFormOf(CFStringEncoding encoding);

/// Reads UTF-16 or UTF-32 bytes. Strict with UTF-32: surrogates and values above 0x10FFFF are
/// refused. UTF-16 units are taken as they are; Foundation refuses lone surrogates among them.
/// @param withMark  A byte-order mark at the start gives the order and is taken away, unless the
///                  form names its order.
/// @return Nothing for bytes that are not valid or no whole number of units.
std::optional<std::vector<UniChar>> decodeUnits(UnitForm form, bool withMark, const UInt8* bytes,
                                                std::size_t byteCount);

/// What CFStringGetBytes() is asked for.
struct EncodeRequest {
    CFStringEncoding encoding;
    UInt8 lossByte;
    bool withMark;
    UInt8* buffer; // may be null
    CFIndex capacity;
};

struct EncodeResult {
    CFIndex unitsRead;
    CFIndex bytesUsed;
};

/// Does what CFStringGetBytes() states, for `count` UTF-16 units.
EncodeResult encodeUnits(const UniChar* units, std::size_t count, const EncodeRequest& request);

} // namespace audiounit_compat
