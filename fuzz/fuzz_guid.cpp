// GUID text: both widths read the same, and what was read survives being written.

#include "XeString.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

void require(bool condition)
{
    if (!condition) {
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // Non-ASCII bytes would be other characters in the two widths.
    std::string ascii(data, data + size);
    for (char& c : ascii) {
        c = static_cast<char>(c & 0x7F);
    }
    const _XeString<char> narrow = ascii;
    const _XeString<wchar_t> wide(ascii.begin(), ascii.end());

    require(XeStringIsGuid(wide) == XeStringIsGuidA(narrow));
    _GUID fromWide{};
    _GUID fromNarrow{};
    XeGuidFromString(wide, fromWide);
    XeGuidFromStringA(narrow, fromNarrow);
    if (XeStringIsGuid(wide)) {
        require(fromWide == fromNarrow);
        const _XeString<wchar_t> written = XeGuidToString(fromWide);
        require(written.size() == 36 && XeStringIsGuid(written));
        _GUID again{};
        XeGuidFromString(written, again);
        require(again == fromWide);
    }
    return 0;
}
