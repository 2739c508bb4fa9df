#pragma once

#include "XeNativePath.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <utility>

/// Ends the fuzzer with a report when an invariant does not hold.
inline void require(bool condition)
{
    if (!condition) {
        std::abort();
    }
}

inline std::string_view bytesOf(const std::uint8_t* data, std::size_t size)
{
    return {reinterpret_cast<const char*>(data), size};
}

/// The input as wide text without zeros, which end a text where it is passed as a pointer. Bytes
/// that are not UTF-8 become surrogates, so that these occur too.
inline _XeString<wchar_t> textOf(std::string_view bytes)
{
    _XeString<wchar_t> text = xenon::path::fromNative(bytes);
    std::erase(text, L'\0');
    return text;
}

/// The input as two texts, cut at the first line end.
inline std::pair<_XeString<wchar_t>, _XeString<wchar_t>> twoTextsOf(std::string_view bytes)
{
    const std::size_t end = bytes.find('\n');
    const std::size_t next = end == std::string_view::npos ? bytes.size() : end + 1;
    return {textOf(bytes.substr(0, end)), textOf(bytes.substr(next))};
}
