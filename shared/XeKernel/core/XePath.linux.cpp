#ifndef __linux__
#error "for Linux only"
#endif

#include "core/XePathPlatform.h"

#include <unicode/unorm2.h>
#include <unicode/ustring.h>

#include <string>

namespace xenon::normalize {
namespace {

using GetNormalizer = const UNormalizer2*(UErrorCode*);

// clang-format off
constexpr GetNormalizer* kNormalizers[] = {
    unorm2_getNFDInstance,   // form_d
    unorm2_getNFKDInstance,  // form_kd
    unorm2_getNFCInstance,   // form_c
    unorm2_getNFKCInstance,  // form_kc
};
// clang-format on

/// Empty when the text is not valid UTF-32, or too long for ICU's 32-bit lengths.
std::u16string _toUtf16(const _XeString<wchar_t>& text)
{
    if (text.size() > INT32_MAX / 2) {
        return {};
    }
    std::u16string units(2 * text.size(), u'\0');
    std::int32_t length = 0;
    UErrorCode error = U_ZERO_ERROR;
    u_strFromUTF32(units.data(), static_cast<std::int32_t>(units.size()), &length,
                   reinterpret_cast<const UChar32*>(text.data()),
                   static_cast<std::int32_t>(text.size()), &error);
    units.resize(U_SUCCESS(error) ? static_cast<std::size_t>(length) : 0);
    return units;
}

} // namespace

_XeString<wchar_t> _normalize(const _XeString<wchar_t>& text, form target)
{
    const std::u16string source = _toUtf16(text);
    const auto sourceLength = static_cast<std::int32_t>(source.size());
    UErrorCode error = U_ZERO_ERROR;
    const UNormalizer2* const normalizer = kNormalizers[target](&error);

    // Names seldom grow; when one does, ICU says how much room it wants.
    std::u16string units(source.size() + 16, u'\0');
    const auto fill = [&] {
        return unorm2_normalize(normalizer, source.data(), sourceLength, units.data(),
                                static_cast<std::int32_t>(units.size()), &error);
    };
    std::int32_t length = fill();
    if (error == U_BUFFER_OVERFLOW_ERROR) {
        error = U_ZERO_ERROR;
        units.resize(static_cast<std::size_t>(length));
        length = fill();
    }
    if (U_FAILURE(error)) {
        return {};
    }
    return _XeString<wchar_t>(units.begin(), units.begin() + length);
}

} // namespace xenon::normalize
