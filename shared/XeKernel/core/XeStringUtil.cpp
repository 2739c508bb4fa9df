#include "XeStringUtil.h"

#include "core/XeUtf8Facet.h"

#include "XeSafeCRT.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

namespace {

// A reference count of 1 from the start keeps every locale from deleting the facet.
XeKernel::utf8_codecvt_facet& _facet()
{
    static XeKernel::utf8_codecvt_facet facet(1);
    return facet;
}

const xenon::Utf8Facet& _localeFacet()
{
    static const auto& facet = std::use_facet<xenon::Utf8Facet>(xenon::get_locale());
    return facet;
}

// ASCII is the same in both encodings. Copies it in blocks up to the block with the first other
// character, which is an order of magnitude faster than asking the facet for each.
template <typename From, typename To>
std::size_t _copyAscii(const From* from, std::size_t count, To* to)
{
    constexpr std::size_t kBlock = 16;
    std::size_t done = 0;
    for (; count - done >= kBlock; done += kBlock) {
        std::uint32_t bits = 0;
        for (std::size_t i = 0; i < kBlock; ++i) {
            bits |= static_cast<std::uint32_t>(from[done + i]);
        }
        if (bits >= 0x80) {
            break;
        }
        std::copy_n(from + done, kBlock, to + done);
    }
    return done;
}

struct Conversion {
    std::codecvt_base::result result;
    std::size_t length; // elements written
};

Conversion _in(const xenon::Utf8Facet& facet, std::string_view src, wchar_t* dst,
               std::size_t dstCount)
{
    std::mbstate_t state{};
    const char* srcNext = src.data();
    wchar_t* dstNext = dst;
    const auto result =
        facet.in(state, src.data(), src.data() + src.size(), srcNext, dst, dst + dstCount, dstNext);
    return {result, static_cast<std::size_t>(dstNext - dst)};
}

// The facet asks for room before it looks at a character, so with the destination full it has
// found nothing wrong so far.
bool _isKept(const Conversion& first, std::size_t dstCount)
{
    return first.result == std::codecvt_base::ok ||
           (first.result == std::codecvt_base::partial && first.length == dstCount);
}

// `dst` has room for `dstCount` characters and the terminator, here and below.
void _toWide(wchar_t* dst, std::size_t dstCount, std::string_view src)
{
    const std::size_t ascii = _copyAscii(src.data(), std::min(src.size(), dstCount), dst);
    Conversion done = _in(_localeFacet(), src.substr(ascii), dst + ascii, dstCount - ascii);
    if (_isKept(done, dstCount - ascii)) {
        done.length += ascii;
    } else {
        const std::locale global;
        done = _in(std::use_facet<xenon::Utf8Facet>(global), src, dst, dstCount);
    }
    dst[done.length] = 0;
}

// Gives the number of bytes before the terminator.
std::size_t _toNarrow(const xenon::Utf8Facet& facet, char* dst, std::size_t dstCount,
                      std::wstring_view src)
{
    const std::size_t ascii = _copyAscii(src.data(), std::min(src.size(), dstCount), dst);
    std::mbstate_t state{};
    const wchar_t* srcNext = nullptr;
    char* dstNext = dst + ascii;
    facet.out(state, src.data() + ascii, src.data() + src.size(), srcNext, dst + ascii,
              dst + dstCount, dstNext);
    *dstNext = 0;
    return static_cast<std::size_t>(dstNext - dst);
}

std::size_t _size(int count) { return static_cast<std::size_t>(std::max(count, 0)); }

// The standard assignment takes a pointer into the string itself.
template <typename T>
void _assign(std::basic_string<T>& s, const T* p)
{
    if (p == nullptr) {
        s.clear();
    } else {
        s.assign(p);
    }
}

} // namespace

namespace xenon {

const Utf8Facet& get_facet() { return _facet(); }

const std::locale& get_locale()
{
    static const std::locale old_locale;
    static const std::locale utf8_locale(old_locale, &_facet());
    return utf8_locale;
}

} // namespace xenon

wchar_t* StdConvert(wchar_t* dst, int dstCount, const char* src, int srcCount)
{
    *dst = 0;
    if (srcCount > 0) {
        _toWide(dst, _size(dstCount), {src, _size(srcCount)});
    }
    return dst;
}

char* StdConvert(char* dst, int dstCount, const wchar_t* src, int srcCount)
{
    *dst = 0;
    if (srcCount > 0) {
        _toNarrow(_localeFacet(), dst, _size(dstCount), {src, _size(srcCount)});
    }
    return dst;
}

void xeassign(std::wstring& s, const wchar_t* p) { _assign(s, p); }

void xeassign(std::string& s, const char* p) { _assign(s, p); }

// A UTF-8 text has no more characters than bytes.
void xeassign(std::wstring& s, const char* p)
{
    if (p == nullptr || *p == 0) {
        s.clear();
        return;
    }
    const std::string_view source = p;
    s.resize(source.size() + 1);
    _toWide(s.data(), source.size(), source);
    s.resize(std::char_traits<wchar_t>::length(s.data()));
}

void xeassign(std::string& s, const wchar_t* p)
{
    if (p == nullptr || *p == 0) {
        s.clear();
        return;
    }
    const std::wstring_view source = p;
    s.resize(4 * source.size() + 5);
    s.resize(_toNarrow(xenon::get_facet(), s.data(), 4 * source.size() + 4, source));
}

const char* util::utf8::invalid_code_point::what() const noexcept { return "Invalid code point"; }
