#pragma once

#include "XeSafeCRT.h"
#include "XeStringTraits.h"
#include "XeStringUtil.h"

#include <cstdarg>
#include <cstdint>
#include <functional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

struct __CFString;

/// The kernel's string: a standard string with formatting, splitting and trimming.
///
/// `_XeString<>` is wide, one code point per element; `_XeString<char>` holds UTF-8. It adds no
/// data, converts from and to the standard string of its character type without copying more than
/// that string's own copy or move does, and inherits all operations. [any]
template <XeStringCharacter T>
class _XeString : public std::basic_string<T> {
    using Base = std::basic_string<T>;

public:
    using Base::Base;
    using Base::operator=;

    _XeString() = default;
    _XeString(const Base& text) : Base(text) {}
    _XeString(Base&& text) noexcept : Base(std::move(text)) {}

    /// Copies a CoreFoundation string as UTF-8; null gives the empty string.
    ///
    /// Text that CoreFoundation can show as UTF-8 at once (ASCII, in practice) is copied whole. Any
    /// other text is written into as many bytes as it has UTF-16 units, so it is cut at the last
    /// whole character that fits: a lone U+00E9 comes out empty. Lone surrogates become "?".
    ///
    /// @param text  A CFStringRef; not retained.
    explicit _XeString(const __CFString* text) requires std::same_as<T, char>;

    /// Replaces the contents with the printf-style expansion of `fmt`.
    ///
    /// Wide formats take wide text with "%ls" and UTF-8 text with "%s". The arguments and `fmt`
    /// may point into this very string. Sets the process's character-type category on every
    /// call (see XeCRT::setCharacterType): the host may have changed it in between.
    ///
    /// @param fmt  Not null.
    /// @return     Characters written; 0 and an empty string when the expansion is empty, when the
    ///             format fails, and when a wide expansion has 524,288 characters or more. Test
    ///             the string, not the number.
    int format(const T* fmt, ...);

    /// The same with an argument list, which is used up. The string ends without slack capacity.
    int va_format(const T* fmt, va_list args);

    /// Splits at runs of characters out of `delimiters`, ignoring those at both ends.
    ///
    ///     _XeString<>(L",,a,,b,,").tokenize(out, L",");  // out = { "a", "b" }
    ///
    /// @param out         Replaced by the tokens, none of them empty; left exactly as it was when
    ///                    the string holds nothing but delimiters.
    /// @param delimiters  Terminated set of characters, not null.
    void tokenize(std::vector<_XeString>& out, const T* delimiters) const;

    /// Removes every leading and trailing character that is in `chars`; null removes nothing.
    void trim(const T* chars);
};

static_assert(sizeof(_XeString<wchar_t>) == sizeof(std::wstring));
static_assert(sizeof(_XeString<char>) == sizeof(std::string));

extern template class _XeString<wchar_t>;
extern template class _XeString<char>;

/// Hashes like the standard string with the same contents.
template <XeStringCharacter T>
struct std::hash<_XeString<T>> : std::hash<std::basic_string<T>> {
};

/// The printf family: `out.va_format(fmt, args)` with its result, for wide and (A) narrow text.
int XeSprintf(_XeString<wchar_t>& out, const wchar_t* fmt, ...);
int XeVSprintf(_XeString<wchar_t>& out, const wchar_t* fmt, va_list args);
int XeVSprintf(_XeString<wchar_t>& out, const _XeString<wchar_t>& fmt, va_list args);

[[gnu::format(printf, 2, 3)]] int XeSprintfA(_XeString<char>& out, const char* fmt, ...);
[[gnu::format(printf, 2, 0)]] int XeVSprintfA(_XeString<char>& out, const char* fmt, va_list args);
int XeVSprintfA(_XeString<char>& out, const _XeString<char>& fmt, va_list args);

/// A 16-byte identifier.
struct _GUID {
    std::uint32_t Data1;
    std::uint16_t Data2;
    std::uint16_t Data3;
    std::uint8_t Data4[8];

    friend bool operator==(const _GUID&, const _GUID&) = default;
};

static_assert(sizeof(_GUID) == 16 && std::is_trivially_copyable_v<_GUID>);

/// Writes a GUID as 36 lower-case characters, "12345678-9abc-def0-0123-456789abcdef".
/// @return  Characters written.
int XeGuidToString(_XeString<wchar_t>& out, const _GUID& guid);
int XeGuidToStringA(_XeString<char>& out, const _GUID& guid);
_XeString<wchar_t> XeGuidToString(const _GUID& guid);
_XeString<char> XeGuidToStringA(const _GUID& guid);

/// Reads a GUID in either letter case. There is no error report: of a text that XeStringIsGuid
/// refuses, the fields that could not be read are unspecified.
void XeGuidFromString(const _XeString<wchar_t>& text, _GUID& guid);
void XeGuidFromStringA(const _XeString<char>& text, _GUID& guid);

/// True when all ten numbers of a GUID can be read from the text. The digit counts are maxima and
/// text after the last group is ignored, so this says "readable", not "well-formed".
bool XeStringIsGuid(const _XeString<wchar_t>& text);
bool XeStringIsGuidA(const _XeString<char>& text);
