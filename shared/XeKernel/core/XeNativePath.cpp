#include "XeNativePath.h"

#include <cstddef>
#include <cstdint>
#include <iterator>

namespace xenon::path {
namespace {

constexpr char32_t kByteEscape = 0xDC00;

constexpr bool _isSurrogate(char32_t character)
{
    return character >= 0xD800 && character <= 0xDFFF;
}

constexpr bool _isEscapedByte(char32_t character)
{
    return character >= kByteEscape + 0x80 && character <= kByteEscape + 0xFF;
}

/// What a lead byte says of its sequence.
struct Lead {
    char32_t first; ///< lowest and highest lead byte of this kind
    char32_t last;
    std::size_t length; ///< bytes in the sequence
    char32_t least;     ///< a smaller character would have a shorter sequence
};

// clang-format off
constexpr Lead kLeads[] = {
    //  first  last  length  least
    {   0x00,  0x7F, 1,      0x0     },
    {   0xC0,  0xDF, 2,      0x80    },
    {   0xE0,  0xEF, 3,      0x800   },
    {   0xF0,  0xF7, 4,      0x10000 },
};
// clang-format on

struct Character {
    char32_t value;
    std::size_t length;
};

constexpr char32_t _byteAt(std::string_view bytes, std::size_t index)
{
    return static_cast<std::uint8_t>(bytes[index]);
}

/// A character of `lead`'s kind at the front of `bytes`, or no length.
Character _readSequence(std::string_view bytes, const Lead& lead)
{
    if (bytes.size() < lead.length) {
        return {};
    }
    char32_t value = _byteAt(bytes, 0) - lead.first;
    for (std::size_t i = 1; i < lead.length; ++i) {
        if ((_byteAt(bytes, i) & 0xC0) != 0x80) {
            return {};
        }
        value = value << 6 | (_byteAt(bytes, i) & 0x3F);
    }
    const bool valid = value >= lead.least && value <= 0x10FFFF && !_isSurrogate(value);
    return valid ? Character{value, lead.length} : Character{};
}

/// The character at the front of `bytes`, which are not empty: an escaped byte where they are not
/// UTF-8.
Character _read(std::string_view bytes)
{
    const char32_t front = _byteAt(bytes, 0);
    for (const Lead& lead : kLeads) {
        if (front < lead.first || front > lead.last) {
            continue;
        }
        if (const Character character = _readSequence(bytes, lead); character.length != 0) {
            return character;
        }
    }
    return {kByteEscape + front, 1};
}

} // namespace

_XeString<wchar_t> fromNative(std::string_view bytes)
{
    _XeString<wchar_t> path;
    path.reserve(bytes.size());
    while (!bytes.empty()) {
        const Character character = _read(bytes);
        path += static_cast<wchar_t>(character.value);
        bytes.remove_prefix(character.length);
    }
    return path;
}

std::optional<std::string> toNative(std::wstring_view path)
{
    std::string bytes;
    bytes.reserve(path.size());
    for (const wchar_t element : path) {
        const auto character = static_cast<char32_t>(element);
        if (_isEscapedByte(character)) {
            bytes += static_cast<char>(character - kByteEscape);
        } else if (_isSurrogate(character) || character > 0x10FFFF) {
            return std::nullopt;
        } else {
            ::util::utf8::append(character, std::back_inserter(bytes));
        }
    }
    return bytes;
}

} // namespace xenon::path
