#pragma once

#include <cstdint>
#include <cwchar>
#include <exception>
#include <locale>
#include <string>

/// Conversion between wide text (UTF-32, one code point per element) and narrow text (UTF-8).
///
/// All conversions go through one codecvt facet that knows the encoding but does not judge it: code
/// points of surrogates and beyond U+10FFFF pass both ways, in up to six bytes. [any]

namespace xenon {

/// The interface of the UTF-8 facet, as standard streams and Boost.Filesystem take it.
using Utf8Facet = std::codecvt<wchar_t, char, std::mbstate_t>;

/// The process-wide UTF-8 facet, created on first call and destroyed at process exit. No locale
/// that it is put into owns it. Variable width, at most 6 bytes a character, stateless.
const Utf8Facet& get_facet();

/// The global locale as it was at the first call, with its wide-character codecvt replaced by
/// get_facet(). Always the same object: later changes of the global locale do not reach it.
const std::locale& get_locale();

} // namespace xenon

/// Converts UTF-8 bytes to wide text in the caller's buffer.
///
/// Bytes that the UTF-8 facet refuses, or a character cut off at the end, make the whole source be
/// converted again with the conversion of the current global locale; what that gives up to the
/// point where it stops is the result. A full destination keeps what fitted.
///
/// @param dst       Receives the text and a terminating zero: `dstCount` + 1 elements.
/// @param dstCount  Most characters to write, without the terminator; below 0 counts as 0.
/// @param src       Need not be terminated; zeros inside are converted like other characters.
/// @param srcCount  Bytes in `src`; 0 and less give an empty text.
/// @return          `dst`.
wchar_t* StdConvert(wchar_t* dst, int dstCount, const char* src, int srcCount);

/// Converts wide text to UTF-8 bytes in the caller's buffer. Whole characters only: one that does
/// not fit ends the text. Arguments as in the other direction, with bytes for `dstCount` and
/// elements for `srcCount`.
char* StdConvert(char* dst, int dstCount, const wchar_t* src, int srcCount);

/// Assigns a terminated text. `p` may point into `s` itself, the terminator included: the tail
/// from there remains. Null empties the string.
void xeassign(std::wstring& s, const wchar_t* p);
void xeassign(std::string& s, const char* p);

/// Assigns a terminated UTF-8 text, converted as by StdConvert and cut at the first zero that the
/// conversion yields. Null empties the string.
void xeassign(std::wstring& s, const char* p);

/// Assigns a terminated wide text as UTF-8. Null empties the string.
void xeassign(std::string& s, const wchar_t* p);

namespace util::utf8 {

/// Base of what the encoder throws.
class exception : public std::exception {};

/// Thrown for a number that is no Unicode scalar value.
class invalid_code_point : public exception {
public:
    explicit invalid_code_point(std::uint32_t codePoint) : m_codePoint(codePoint) {}

    /// "Invalid code point".
    const char* what() const noexcept override;

    /// The offending number.
    std::uint32_t code_point() const noexcept { return m_codePoint; }

private:
    std::uint32_t m_codePoint;
};

/// Writes one code point as 1 to 4 bytes of UTF-8 (RFC 3629).
///
///     append(0x20AC, std::back_inserter(text));  // text + "\xE2\x82\xAC"
///
/// @param out  Output iterator over narrow characters, such as a back inserter.
/// @return     The iterator after the last byte.
/// @throws invalid_code_point  for a surrogate or a number above 0x10FFFF, before any byte is
///                             written.
template <typename OutputIterator>
OutputIterator append(std::uint32_t codePoint, OutputIterator out)
{
    const auto put = [&out](std::uint32_t byte) { *out++ = static_cast<char>(byte); };
    const auto continuation = [codePoint](unsigned shift) {
        return 0x80 | ((codePoint >> shift) & 0x3F);
    };

    if (codePoint >= 0x110000 || (codePoint >= 0xD800 && codePoint <= 0xDFFF)) {
        throw invalid_code_point(codePoint);
    }
    if (codePoint < 0x80) {
        put(codePoint);
    } else if (codePoint < 0x800) {
        put(0xC0 | codePoint >> 6);
        put(continuation(0));
    } else if (codePoint < 0x10000) {
        put(0xE0 | codePoint >> 12);
        put(continuation(6));
        put(continuation(0));
    } else {
        put(0xF0 | codePoint >> 18);
        put(continuation(12));
        put(continuation(6));
        put(continuation(0));
    }
    return out;
}

} // namespace util::utf8

/// The encoder under the name that code inside `xenon` finds first.
namespace xenon::util {
namespace utf8 = ::util::utf8;
} // namespace xenon::util
