#pragma once

#include <concepts>
#include <cstdio>
#include <cwchar>

/// The two character types of kernel text: `wchar_t` holds one UTF-32 code point, `char` one byte
/// of UTF-8.
template <typename T>
concept XeStringCharacter = std::same_as<T, wchar_t> || std::same_as<T, char>;

static_assert(sizeof(wchar_t) == 4, "wide text is one code point per element");

template <XeStringCharacter T = wchar_t>
class _XeString;

/// What differs between wide and narrow text in the C library, so that code which serves both is
/// written once.
///
/// - kGuidFormat    the text form of a GUID for print and scan; the widths are maxima for scan
/// - scan           swscanf or sscanf: the number of fields assigned
template <XeStringCharacter T>
struct XeStringTraits;

template <>
struct XeStringTraits<wchar_t> {
    static constexpr const wchar_t* kGuidFormat = L"%08x-%04x-%04x-%04x-%02x%02x%02x%02x%02x%02x";

    template <typename... Fields>
    static int scan(const wchar_t* text, const wchar_t* format, Fields*... fields)
    {
        return std::swscanf(text, format, fields...);
    }
};

template <>
struct XeStringTraits<char> {
    static constexpr const char* kGuidFormat = "%08x-%04x-%04x-%04x-%02x%02x%02x%02x%02x%02x";

    template <typename... Fields>
    static int scan(const char* text, const char* format, Fields*... fields)
    {
        return std::sscanf(text, format, fields...);
    }
};
