// Names as bytes: any bytes come back unchanged through wide text, and wide text that has bytes
// means the same file afterwards.

#include "FuzzInput.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace {

bool isEscapedByte(wchar_t c) { return c >= 0xDC80 && c <= 0xDCFF; }

bool hasNoBytes(wchar_t c)
{
    const auto value = static_cast<char32_t>(c);
    return value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF && !isEscapedByte(c));
}

void checkBytes(std::string_view bytes)
{
    const _XeString<wchar_t> wide = xenon::path::fromNative(bytes);
    require(wide.size() <= bytes.size());
    require(xenon::path::toNative(wide) == bytes);
}

/// Four bytes of the input for each element.
void checkElements(std::string_view bytes)
{
    std::wstring elements(bytes.size() / sizeof(wchar_t), L'\0');
    if (!elements.empty()) {
        std::memcpy(elements.data(), bytes.data(), elements.size() * sizeof(wchar_t));
    }
    const bool refused =
        std::find_if(elements.begin(), elements.end(), hasNoBytes) != elements.end();
    const auto native = xenon::path::toNative(elements);
    require(native.has_value() != refused);
    if (!native) {
        return;
    }
    // Escaped bytes may have come together to a character.
    const bool escapes =
        std::find_if(elements.begin(), elements.end(), isEscapedByte) != elements.end();
    const _XeString<wchar_t> back = xenon::path::fromNative(*native);
    require(escapes ? xenon::path::toNative(back) == native : back == elements);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    checkBytes(bytesOf(data, size));
    checkElements(bytesOf(data, size));
    return 0;
}
